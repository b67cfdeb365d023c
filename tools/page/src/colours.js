// The ramp's colours on the graphics card.
import { DataTexture, LinearFilter, SRGBColorSpace } from 'three';
import { kColourSteps } from './decode.js';

/** 256 colours as a texture; see textureCoordinate(). */
export function colourTexture(colours) {
  const texels = new Uint8Array(4 * kColourSteps);
  for (let k = 0; k < kColourSteps; ++k) {
    texels.set(colours.subarray(3 * k, 3 * k + 3), 4 * k);
    texels[4 * k + 3] = 255;
  }
  const texture = new DataTexture(texels, kColourSteps, 1);
  texture.colorSpace = SRGBColorSpace;
  texture.minFilter = LinearFilter;
  texture.magFilter = LinearFilter;
  texture.needsUpdate = true;
  return texture;
}

/** Of a value from 0 to 1: the first step's middle lies half a texel inside the texture. */
export const textureCoordinate = (t) => (0.5 + t * (kColourSteps - 1)) / kColourSteps;

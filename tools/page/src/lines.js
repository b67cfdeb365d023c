// Lines and dots on the surface.
import { InstancedBufferAttribute, PointsMaterial } from 'three';
import { LineMaterial } from 'three/addons/lines/LineMaterial.js';
import { rankOf } from './spacing.js';

// What is drawn on the surface is drawn a little nearer, towards the eye: it stays where
// it is on the screen, and the surface, however steep, does not cut into it.
export const kNearer = 0.9993;

const kStep = '0.01'; // for derivatives in a shader

/** Replaces a line of a shader, which must be there. */
function patched(shader, before, after) {
  if (!shader.includes(before)) throw new Error(`the shader has no ${before}`);
  return shader.replace(before, after);
}

/** For lines: see kNearer. A uniform, so that lines alike in all else share a program. */
export function lineMaterial(options, nearer = kNearer) {
  const material = new LineMaterial(options);
  material.uniforms.nearer = { value: nearer };
  material.vertexShader = patched(
    `uniform float nearer;\n${material.vertexShader}`,
    'vec4 end = modelViewMatrix * vec4( instanceEnd, 1.0 );',
    `vec4 end = modelViewMatrix * vec4( instanceEnd, 1.0 );
     start.xyz *= nearer;
     end.xyz *= nearer;`,
  );
  return material;
}

/**
 * For level curves: where they are less than `least` pixels apart only every 2nd, 4th, 8th ... is
 * drawn, and thinner. Geometries need setSpacing().
 */
export function curveMaterial(options, least) {
  const material = lineMaterial(options);
  material.uniforms.least = { value: least };
  material.vertexShader = patched(
    `attribute vec4 curveGap;
     attribute float curveRank;
     uniform float least;
     ${material.vertexShader}`,
    'offset *= linewidth;',
    `// How far on the screen it is across the line to the next one, foreshortened or not.
     vec4 beside = projectionMatrix * modelViewMatrix * vec4(instanceStart + ${kStep} * curveGap.xyz, 1.0);
     vec4 here = projectionMatrix * modelViewMatrix * vec4(instanceStart, 1.0);
     vec2 rise = 0.5 * resolution * (beside.xy / beside.w - here.xy / here.w);
     vec2 along = 0.5 * resolution * (clipEnd.xy / clipEnd.w - clipStart.xy / clipStart.w);
     float size = length(along);
     float across = size > 0.01 ? abs(rise.x * along.y - rise.y * along.x) / size : length(rise);
     float apart = across / ${kStep} * curveGap.w;
     float stays = smoothstep(0.75, 1.0, curveRank * apart / least);
     offset *= stays * min(linewidth, 0.42 * max(apart, least));`,
  );
  return material;
}

/**
 * Tells a geometry of segments how far apart the curves lie at each, for curveMaterial(). gaps: of
 * gapsOf(); `isShown(level index)`.
 */
export function setSpacing(geometry, { levelOf, pointOf }, gaps, isShown) {
  const own = new Float32Array(4 * levelOf.length);
  const ranks = new Float32Array(levelOf.length);
  levelOf.forEach((l, s) => {
    own.set(gaps.subarray(4 * pointOf[s], 4 * pointOf[s] + 4), 4 * s);
    ranks[s] = isShown(l) ? rankOf(l) : 0;
  });
  geometry.setAttribute('curveGap', new InstancedBufferAttribute(own, 4));
  geometry.setAttribute('curveRank', new InstancedBufferAttribute(ranks, 1));
}

/** Round points with soft rims, of a size in pixels. */
export function dotMaterial(options, nearer = kNearer) {
  const material = new PointsMaterial({ ...options, sizeAttenuation: false, transparent: true, depthWrite: false });
  material.onBeforeCompile = (shader) => {
    shader.vertexShader = patched(
      shader.vertexShader,
      '#include <project_vertex>',
      `#include <project_vertex>
       gl_Position = projectionMatrix * vec4(${nearer.toFixed(8)} * mvPosition.xyz, 1.0);`,
    );
    shader.fragmentShader = patched(
      shader.fragmentShader,
      '#include <alphatest_fragment>',
      `float rim = length(gl_PointCoord - 0.5);
       diffuseColor.a *= 1.0 - smoothstep(0.5 - fwidth(rim), 0.5, rim);
       if (diffuseColor.a < 0.01) discard;`,
    );
  };
  // Programs are shared by what stands in onBeforeCompile, where every number looks alike.
  material.customProgramCacheKey = () => `dot ${nearer}`;
  return material;
}

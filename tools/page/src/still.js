// The scene without WebGL: painted on a plain canvas, slowly, but all there.
import { DepthPicture, projected, visibleParts } from './raster.js';

const kGrey = { light: [217, 221, 227], dark: [106, 116, 128] };
const kMostPixels = 1.5e6;

/** How light a triangle is that faces the eye by this cosine, as the lights of SurfaceScene have it. */
const lightness = (cosine) => Math.min(1, ((2 + 1.25 * cosine) / Math.PI) ** (1 / 2.2));

function shadeOf(points, a, b, c) {
  // From the slopes of 1 / depth on the picture; good enough to show the shape.
  const [ux, uy, uz] = [points[b] - points[a], points[b + 1] - points[a + 1], points[b + 2] / points[a + 2] - 1];
  const [vx, vy, vz] = [points[c] - points[a], points[c + 1] - points[a + 1], points[c + 2] / points[a + 2] - 1];
  const area = ux * vy - uy * vx;
  const slope = Math.hypot(uy * vz - uz * vy, uz * vx - ux * vz) / (Math.abs(area) || 1);
  return lightness(1 / Math.sqrt(1 + (slope * 1500) ** 2));
}

function paintSurface(scene, points, depth, image) {
  const { triangles } = scene.mesh;
  const { colours } = scene.data;
  const { low, high } = scene.colourRange;
  for (let k = 0; k < triangles.length; k += 3) {
    const [a, b, c] = [triangles[k], triangles[k + 1], triangles[k + 2]];
    const shade = shadeOf(points, 3 * a, 3 * b, 3 * c);
    const [fa, fb, fc] = [a, b, c].map((v) => (255 * (scene.field[v] - low)) / (high - low || 1));
    depth.add(points, 3 * a, 3 * b, 3 * c, (at, u, v, w) => {
      const step = 3 * Math.min(255, Math.max(0, Math.round(u * fa + v * fb + w * fc)));
      const grey = kGrey[scene.theme];
      for (let i = 0; i < 3; ++i)
        image.data[4 * at + i] = shade * (scene.shown.heatMap ? colours[step + i] : grey[i]);
      image.data[4 * at + 3] = 255;
    });
  }
}

/** Draws a SurfaceScene on its canvas. */
export function paintStill(scene) {
  const { width, height, canvas } = scene;
  const context = canvas.getContext('2d');
  context.clearRect(0, 0, width, height);
  if (width * height > kMostPixels || width < 1 || height < 1) return;
  const points = projected(scene.mesh.positions, scene.camera, width, height);
  const depth = new DepthPicture(width, height);
  const image = context.createImageData(width, height);
  paintSurface(scene, points, depth, image);
  context.putImageData(image, 0, 0);
  if (!scene.shown.curves) return;
  for (const { parts, level } of visibleCurves(scene, depth)) {
    context.strokeStyle = scene.shown.heatMap ? '#0f1216' : scene.colourOf(scene.levels[level]).getStyle();
    context.lineWidth = 1.5;
    context.beginPath();
    for (const part of parts)
      for (let k = 0; k < part.length; k += 2) context[k === 0 ? 'moveTo' : 'lineTo'](part[k], part[k + 1]);
    context.stroke();
  }
}

/** The curves that are shown, with their parts in front: [{level, parts, curve}]. */
export function visibleCurves(scene, depth) {
  const { traced } = scene;
  const points = projected(traced.points, scene.camera, depth.width, depth.height);
  return traced.levels
    .map((level, curve) => ({ level, curve }))
    .filter(({ level }) => scene.isLevelShown(level))
    .map(({ level, curve }) => ({
      level,
      parts: visibleParts(depth, points, traced.starts[curve], traced.starts[curve + 1], traced.closed[curve] === 1),
    }));
}

/** What lies in front, for drawings of a scene as it is looked at now. */
export function depthOf(scene) {
  const depth = new DepthPicture(scene.width, scene.height);
  const points = projected(scene.mesh.positions, scene.camera, scene.width, scene.height);
  const { triangles } = scene.mesh;
  for (let k = 0; k < triangles.length; k += 3)
    depth.add(points, 3 * triangles[k], 3 * triangles[k + 1], 3 * triangles[k + 2]);
  return { depth, points };
}

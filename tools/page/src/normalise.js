// Meshes of any size and place, as the page's scene has them.

/**
 * Coordinates relative to the middle of the bounding box, in units of half its diagonal:
 * single precision, which is what graphics cards have, then holds them all equally well.
 * Returns {local: Float64Array(3n), centre: [x, y, z], radius, size: [dx, dy, dz]}, sizes local.
 */
export function normalise(positions) {
  const low = [Infinity, Infinity, Infinity];
  const high = [-Infinity, -Infinity, -Infinity];
  for (let k = 0; k < positions.length; ++k) {
    low[k % 3] = Math.min(low[k % 3], positions[k]);
    high[k % 3] = Math.max(high[k % 3], positions[k]);
  }
  const centre = low.map((l, c) => l / 2 + high[c] / 2);
  const radius = Math.hypot(...low.map((l, c) => high[c] / 2 - l / 2)) || 1;
  const local = Float64Array.from(positions, (p, k) => (p - centre[k % 3]) / radius);
  const size = low.map((l, c) => high[c] / radius - l / radius);
  return { local, centre, radius, size };
}

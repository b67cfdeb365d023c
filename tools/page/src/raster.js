// A mesh on a picture without a graphics card: what lies in front, and in which colour.
//
// A depth buffer. Triangles are drawn pixel by pixel; each pixel keeps the largest 1 / depth so far,
// which is linear on the picture, as depth is not. A line is cut where it is behind the buffer.

/**
 * Points on a picture of width x height pixels as a camera has them: Float32Array(3n) of x, y and
 * 1 / depth, which is linear on the picture. 0 for what is behind the eye.
 */
export function projected(positions, camera, width, height) {
  const e = camera.projectionMatrix.clone().multiply(camera.matrixWorldInverse).elements;
  const out = new Float32Array(positions.length);
  for (let k = 0; k < positions.length; k += 3) {
    const [x, y, z] = [positions[k], positions[k + 1], positions[k + 2]];
    const w = e[3] * x + e[7] * y + e[11] * z + e[15];
    out[k] = ((1 + (e[0] * x + e[4] * y + e[8] * z + e[12]) / w) / 2) * width;
    out[k + 1] = ((1 - (e[1] * x + e[5] * y + e[9] * z + e[13]) / w) / 2) * height;
    out[k + 2] = w > 0 ? 1 / w : 0;
  }
  return out;
}

/** 1 / depth of what lies in front at each pixel; 0 where nothing does. */
export class DepthPicture {
  constructor(width, height) {
    Object.assign(this, { width, height, nearest: new Float32Array(width * height) });
  }

  /**
   * Draws a triangle of projected() points that begin at a, b and c in `points`. Calls
   * `put(pixel, u, v, w)` with barycentric coordinates, correct in perspective, wherever the triangle
   * is in front of all before it.
   */
  add(points, a, b, c, put) {
    const [ax, ay, az] = [points[a], points[a + 1], points[a + 2]];
    const [bx, by, bz] = [points[b], points[b + 1], points[b + 2]];
    const [cx, cy, cz] = [points[c], points[c + 1], points[c + 2]];
    const area = (bx - ax) * (cy - ay) - (by - ay) * (cx - ax);
    if (!area || az <= 0 || bz <= 0 || cz <= 0) return;
    const left = Math.max(0, Math.ceil(Math.min(ax, bx, cx) - 0.5));
    const right = Math.min(this.width - 1, Math.floor(Math.max(ax, bx, cx) - 0.5));
    const top = Math.max(0, Math.ceil(Math.min(ay, by, cy) - 0.5));
    const bottom = Math.min(this.height - 1, Math.floor(Math.max(ay, by, cy) - 0.5));
    for (let y = top; y <= bottom; ++y)
      for (let x = left; x <= right; ++x) {
        const [px, py] = [x + 0.5, y + 0.5];
        const u = ((bx - px) * (cy - py) - (by - py) * (cx - px)) / area;
        const v = ((cx - px) * (ay - py) - (cy - py) * (ax - px)) / area;
        const w = 1 - u - v;
        if (u < 0 || v < 0 || w < 0) continue;
        const near = u * az + v * bz + w * cz;
        const at = y * this.width + x;
        if (near <= this.nearest[at]) continue;
        this.nearest[at] = near;
        put?.(at, (u * az) / near, (v * bz) / near, (w * cz) / near);
      }
  }

  /** Whether a projected point that lies on the mesh is in front there. */
  shows(x, y, near) {
    const [column, row] = [Math.floor(x), Math.floor(y)];
    if (column < 0 || row < 0 || column >= this.width || row >= this.height || near <= 0) return false;
    return near >= this.nearest[row * this.width + column] * (1 - kSlack);
  }
}

const kSlack = 0.004; // of the depth, which the buffer has at the pixel's middle, not at the point
const kStep = 3; // in pixels: how far apart the points of a line are that are compared with the buffer

/**
 * The parts of a line of projected points (`from` to `to` in points, one after the other, and back
 * to `from` when closed) that are in front: [[x, y, x, y, ...], ...].
 */
export function visibleParts(depth, points, from, to, closed) {
  const parts = [];
  let part = null;
  const add = (x, y, isShown) => {
    if (!isShown) return (part = null);
    if (!part) parts.push((part = []));
    part.push(x, y);
  };
  for (let p = from; p < to - (closed ? 0 : 1); ++p) {
    const [a, b] = [3 * p, 3 * (p + 1 < to ? p + 1 : from)];
    const size = Math.hypot(points[b] - points[a], points[b + 1] - points[a + 1]);
    const steps = Number.isFinite(size) ? Math.min(1000, Math.max(1, Math.ceil(size / kStep))) : 1;
    for (let k = p === from ? 0 : 1; k <= steps; ++k) {
      const [x, y, near] = [0, 1, 2].map((c) => points[a + c] + (points[b + c] - points[a + c]) * (k / steps));
      add(x, y, depth.shows(x, y, near));
    }
  }
  return parts.filter(({ length }) => length > 2);
}

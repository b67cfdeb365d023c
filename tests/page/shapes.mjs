// Meshes for the tests of pages: {positions, triangles}.

/** columns x rows cells over [x0, x1] x [y0, y1], at the height that `height(x, y)` says. */
export function sheet(columns, rows, [x0, x1, y0, y1], height = () => 0) {
  const positions = [];
  const triangles = [];
  for (let j = 0; j <= rows; ++j)
    for (let i = 0; i <= columns; ++i) {
      const x = x0 + ((x1 - x0) * i) / columns;
      const y = y0 + ((y1 - y0) * j) / rows;
      positions.push(x, y, height(x, y));
    }
  for (let j = 0; j < rows; ++j)
    for (let i = 0; i < columns; ++i) {
      const a = j * (columns + 1) + i;
      const d = a + columns + 1;
      triangles.push(a, a + 1, d + 1, a, d + 1, d);
    }
  return { positions: Float64Array.from(positions), triangles: Uint32Array.from(triangles) };
}

/** The text of an OBJ file, every double in full. */
export function obj({ positions, triangles }) {
  const lines = [];
  for (let k = 0; k < positions.length; k += 3)
    lines.push(`v ${positions[k]} ${positions[k + 1]} ${positions[k + 2]}`);
  for (let k = 0; k < triangles.length; k += 3)
    lines.push(`f ${triangles[k] + 1} ${triangles[k + 1] + 1} ${triangles[k + 2] + 1}`);
  return `${lines.join('\n')}\n`;
}

/** What lies at `keep(middle of the triangle)`; vertices that are left over go. */
export function cutOut({ positions, triangles }, keep) {
  const kept = [];
  for (let k = 0; k < triangles.length; k += 3) {
    const corners = [...triangles.slice(k, k + 3)];
    const middle = [0, 1, 2].map((c) => corners.reduce((sum, v) => sum + positions[3 * v + c] / 3, 0));
    if (keep(middle)) kept.push(...corners);
  }
  const number = new Map();
  for (const v of kept) if (!number.has(v)) number.set(v, number.size);
  return {
    positions: Float64Array.from([...number.keys()].flatMap((v) => [...positions.slice(3 * v, 3 * v + 3)])),
    triangles: Uint32Array.from(kept, (v) => number.get(v)),
  };
}

export function moved({ positions, triangles }, factor, offset) {
  return { positions: positions.map((c, k) => c * factor + offset[k % 3]), triangles };
}

export function together(meshes) {
  const positions = [];
  const triangles = [];
  for (const mesh of meshes) {
    const first = positions.length / 3;
    positions.push(...mesh.positions);
    triangles.push(...[...mesh.triangles].map((v) => v + first));
  }
  return { positions: Float64Array.from(positions), triangles: Uint32Array.from(triangles) };
}

/** A closed tube of `around` columns through rings of [x, y, z] functions, with caps to points. */
function closed(rings, around, place) {
  const positions = [...place(0, 0)];
  const triangles = [];
  for (let r = 1; r < rings; ++r) for (let a = 0; a < around; ++a) positions.push(...place(r / rings, a / around));
  positions.push(...place(1, 0));
  const at = (r, a) => 1 + (r - 1) * around + (a % around);
  const last = positions.length / 3 - 1;
  for (let a = 0; a < around; ++a) {
    triangles.push(0, at(1, a), at(1, a + 1));
    for (let r = 1; r + 1 < rings; ++r)
      triangles.push(at(r, a), at(r + 1, a), at(r + 1, a + 1), at(r, a), at(r + 1, a + 1), at(r, a + 1));
    triangles.push(last, at(rings - 1, a + 1), at(rings - 1, a));
  }
  return { positions: Float64Array.from(positions), triangles: Uint32Array.from(triangles) };
}

/** A ball of radius(direction), whose poles lie on z. */
export const ball = (rings, around, radius) =>
  closed(rings, around, (s, t) => {
    const [polar, turn] = [Math.PI * s, 2 * Math.PI * t];
    const direction = [Math.sin(polar) * Math.cos(turn), Math.sin(polar) * Math.sin(turn), Math.cos(polar)];
    return direction.map((c) => c * radius(direction));
  });

/** Stands on four legs, y up, and looks along z. */
export function animal() {
  const bumps = [
    ...[[1, 1], [1, -1], [-1, 1], [-1, -1]].map(([x, z]) => ({ to: [0.42 * x, -0.72, 0.5 * z], size: 0.75, width: 0.02 })),
    { to: [0, 0.45, 0.9], size: 0.55, width: 0.06 },
  ];
  const mesh = ball(90, 120, (d) => {
    let radius = 0.55;
    for (const { to, size, width } of bumps) {
      const cosine = d.reduce((sum, c, k) => sum + c * to[k], 0) / Math.hypot(...to);
      radius += size * Math.exp(-(1 - cosine) / width);
    }
    return radius;
  });
  return { ...mesh, positions: mesh.positions.map((c, k) => (k % 3 === 2 ? 1.5 * c : c)) };
}

/** A block with a round bore through it, 40 long along y. */
export function bracket() {
  const around = 64;
  const outline = (a, part) => {
    const angle = (2 * Math.PI * a) / around;
    const [c, s] = [Math.cos(angle), Math.sin(angle)];
    const square = 14 / Math.max(Math.abs(c), Math.abs(s));
    const radius = 7 + part * (square - 7);
    return [radius * c, radius * s];
  };
  const positions = [];
  const triangles = [];
  // Front, outside, back, bore: one loop of rings.
  const path = [];
  for (let k = 0; k < 8; ++k) path.push([k / 8, 0]);
  for (let k = 0; k < 20; ++k) path.push([1, k / 20]);
  for (let k = 0; k < 8; ++k) path.push([1 - k / 8, 1]);
  for (let k = 0; k < 20; ++k) path.push([0, 1 - k / 20]);
  for (const [part, along] of path)
    for (let a = 0; a < around; ++a) {
      const [x, z] = outline(a, part);
      positions.push(x, 40 * along, z);
    }
  const at = (p, a) => (p % path.length) * around + (a % around);
  for (let p = 0; p < path.length; ++p)
    for (let a = 0; a < around; ++a)
      triangles.push(at(p, a), at(p + 1, a), at(p + 1, a + 1), at(p, a), at(p + 1, a + 1), at(p, a + 1));
  return { positions: Float64Array.from(positions), triangles: Uint32Array.from(triangles) };
}

/** A vaulted roof with an opening in its middle and a skylight. */
export const roof = () =>
  cutOut(
    sheet(90, 60, [-12, 12, -8, 8], (x, y) => 3.2 * (1 - (x / 12) ** 2) * (1 - 0.7 * (y / 8) ** 2)),
    ([x, y]) => Math.hypot(x + 3, y) > 2.2 && Math.hypot(x - 7, y - 3) > 1.4,
  );

/** Hills where surveyors count from far away. */
export const terrain = () =>
  moved(
    sheet(110, 90, [0, 550, 0, 450], (x, y) => 40 * Math.sin(x / 90) * Math.cos(y / 70) + 14 * Math.sin(x / 31 + y / 43)),
    1,
    [512300.25, 6512000.75, 431],
  );

/** Many balls beside each other. */
export const parts = () =>
  together(
    Array.from({ length: 60 }, (_, k) =>
      moved(ball(10, 16, () => 0.42), 1, [k % 5, Math.floor(k / 5) % 4, Math.floor(k / 20)]),
    ),
  );

export const oneTriangle = () => ({
  positions: Float64Array.of(0, 0, 0, 2, 0, 0, 0.4, 1.3, 0),
  triangles: Uint32Array.of(0, 1, 2),
});

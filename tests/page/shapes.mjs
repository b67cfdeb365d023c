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

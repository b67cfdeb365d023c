// Normals that keep sharp edges sharp.

/** Unit normal of every triangle, Float32Array(3m); zero where there is no area. */
export function faceNormals({ positions, triangles }) {
  const normals = new Float32Array(triangles.length);
  for (let k = 0; k < triangles.length; k += 3) {
    const [a, b, c] = [3 * triangles[k], 3 * triangles[k + 1], 3 * triangles[k + 2]];
    const ux = positions[b] - positions[a];
    const uy = positions[b + 1] - positions[a + 1];
    const uz = positions[b + 2] - positions[a + 2];
    const vx = positions[c] - positions[a];
    const vy = positions[c + 1] - positions[a + 1];
    const vz = positions[c + 2] - positions[a + 2];
    const nx = uy * vz - uz * vy;
    const ny = uz * vx - ux * vz;
    const nz = ux * vy - uy * vx;
    const length = Math.sqrt(nx * nx + ny * ny + nz * nz) || 1;
    normals[k] = nx / length;
    normals[k + 1] = ny / length;
    normals[k + 2] = nz / length;
  }
  return normals;
}

/** For each vertex the corners that it is, as {begin: Uint32Array(n + 1), corners}. */
export function cornersByVertex(vertexCount, triangles) {
  const begin = new Uint32Array(vertexCount + 1);
  for (const v of triangles) ++begin[v + 1];
  for (let v = 0; v < vertexCount; ++v) begin[v + 1] += begin[v];
  const next = begin.slice();
  const corners = new Uint32Array(triangles.length);
  for (let k = 0; k < triangles.length; ++k) corners[next[triangles[k]]++] = k;
  return { begin, corners };
}

/**
 * A normal for every corner, Float32Array(9m): the mean over the triangles round its vertex
 * that are turned by less than the angle of cosine `sharp` from its own.
 */
export function cornerNormals(mesh, sharp = 0.8) {
  const { triangles } = mesh;
  const faces = faceNormals(mesh);
  const { begin, corners } = cornersByVertex(mesh.positions.length / 3, triangles);
  const normals = new Float32Array(3 * triangles.length);
  for (let k = 0; k < triangles.length; ++k) {
    const own = k - (k % 3);
    let [x, y, z] = [0, 0, 0];
    for (let i = begin[triangles[k]]; i < begin[triangles[k] + 1]; ++i) {
      const other = corners[i] - (corners[i] % 3);
      const cosine =
        faces[own] * faces[other] +
        faces[own + 1] * faces[other + 1] +
        faces[own + 2] * faces[other + 2];
      if (cosine < sharp) continue;
      x += faces[other];
      y += faces[other + 1];
      z += faces[other + 2];
    }
    const length = Math.sqrt(x * x + y * y + z * z) || 1;
    normals[3 * k] = x / length;
    normals[3 * k + 1] = y / length;
    normals[3 * k + 2] = z / length;
  }
  return normals;
}

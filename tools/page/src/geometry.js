// The surface as graphics cards take it: vertices with one normal each, shared between triangles.
import { BufferAttribute, BufferGeometry, Vector3 } from 'three';
import { cornersByVertex, cornerNormals } from './normals.js';

const kShort = 32767; // normals are stored as 16-bit fractions of 1
const kSame = 0.999; // cosine; normals that differ by less than three degrees are one

/**
 * Splits vertices where sharp edges give them several normals: {vertexOf: Uint32Array(k) the mesh's
 * vertex of each, normals: Int16Array(4k), index: Uint32Array(3m)}.
 */
export function splitVertices(mesh) {
  const { triangles } = mesh;
  const vertexCount = mesh.positions.length / 3;
  const normals = cornerNormals(mesh);
  const { begin, corners } = cornersByVertex(vertexCount, triangles);
  const index = new Uint32Array(triangles.length);
  const firstCorner = new Uint32Array(triangles.length); // of each vertex that is made
  const vertexOf = new Uint32Array(triangles.length);
  let made = 0;
  for (let v = 0; v < vertexCount; ++v) {
    const own = made;
    for (let i = begin[v]; i < begin[v + 1]; ++i) {
      const k = 3 * corners[i];
      let same = own;
      for (; same < made; ++same) {
        const other = 3 * firstCorner[same];
        const cosine = normals[k] * normals[other] + normals[k + 1] * normals[other + 1] + normals[k + 2] * normals[other + 2];
        if (cosine > kSame) break;
      }
      if (same === made) {
        firstCorner[made] = corners[i];
        vertexOf[made++] = v;
      }
      index[corners[i]] = same;
    }
  }
  const packed = new Int16Array(4 * made);
  for (let k = 0; k < made; ++k)
    for (let c = 0; c < 3; ++c) packed[4 * k + c] = Math.round(kShort * normals[3 * firstCorner[k] + c]);
  return { vertexOf: vertexOf.slice(0, made), normals: packed, index };
}

/** The geometry of a mesh in a scene's coordinates; its `uv` is for the field to be set. */
export function surfaceGeometry(mesh) {
  const { vertexOf, normals, index } = splitVertices(mesh);
  const places = new Float32Array(3 * vertexOf.length);
  for (let k = 0; k < vertexOf.length; ++k)
    for (let c = 0; c < 3; ++c) places[3 * k + c] = mesh.positions[3 * vertexOf[k] + c];
  const geometry = new BufferGeometry();
  geometry.setAttribute('position', new BufferAttribute(places, 3));
  geometry.setAttribute('normal', new BufferAttribute(normals, 4, true));
  geometry.setAttribute('uv', new BufferAttribute(new Float32Array(vertexOf.length).fill(0.5), 1));
  geometry.setIndex(new BufferAttribute(index, 1));
  return { geometry, vertexOf };
}

/** The field at a point (a Vector3) in a triangle, from the point's barycentric coordinates. */
export function valueAt({ positions, triangles }, field, triangle, point) {
  const corners = triangles.subarray(3 * triangle, 3 * triangle + 3);
  const [a, b, c] = Array.from(corners, (v) => new Vector3().fromArray(positions, 3 * v));
  const normal = b.clone().sub(a).cross(c.clone().sub(a));
  const area = normal.lengthSq();
  const share = (p, q) => p.clone().sub(point).cross(q.clone().sub(point)).dot(normal) / area;
  return share(b, c) * field[corners[0]] + share(c, a) * field[corners[1]] + share(a, b) * field[corners[2]];
}

// The page's mesh: one block of bytes, written by tools/qelm/page/page_data.cpp.
//
//   "QELM", version (u32), n, m (u32): vertices, triangles; l (u32): n with a load, else 0
//   exact (u32)   1: positions as doubles; 0: as fractions of the box round the mesh
//   positions     exact: f64[3n], packed xyz, the caller's units
//                 else:  f64[6], the box's lowest corner and its extents, then u24[3n]: 0 is the
//                        lowest corner, 2^24 - 1 the highest
//   field         f64[n]
//   load          f64[l]
//   colours       u8[768]  red, green, blue of 256 steps, the smallest value first
//   fixedBy       runs of vertices held by one condition, as varints: length, condition (0: free;
//                 k: the k-th of the page's facts), until there are n
//   corners       varint[3m] differences between successive corners, zigzag
//
// All little-endian. A varint has seven bits in each byte, the lowest first; every
// byte but the last has its top bit set. Zigzag: 0, -1, 1, -2 ... are 0, 1, 2, 3 ...

const kMagic = 0x4d4c4551; // "QELM"
const kVersion = 2;
const kHeadBytes = 24;
const kMostSteps = 2 ** 24 - 1;
export const kColourSteps = 256;

/** Reads numbers from `bytes`, one after another. */
class Reader {
  constructor(bytes) {
    this.bytes = bytes;
    this.place = kHeadBytes;
  }

  take(length) {
    if (this.place + length > this.bytes.length) throw new Error('the page is cut short');
    this.place += length;
    return this.bytes.slice(this.place - length, this.place);
  }

  doubles(count) {
    return new Float64Array(this.take(8 * count).buffer);
  }

  varint() {
    let value = 0;
    for (let shift = 0; shift < 35; shift += 7) {
      if (this.place >= this.bytes.length) throw new Error('the page is cut short');
      const byte = this.bytes[this.place++];
      value |= (byte & 0x7f) << shift;
      if (byte < 0x80) return value >>> 0;
    }
    throw new Error('the page is damaged');
  }

  signed() {
    const code = this.varint();
    return (code >>> 1) ^ -(code & 1);
  }
}

export function bytesFromBase64(text) {
  const binary = atob(text.trim());
  const bytes = new Uint8Array(binary.length);
  for (let k = 0; k < binary.length; ++k) bytes[k] = binary.charCodeAt(k);
  return bytes;
}

/** Positions that were stored as fractions of a box. */
function readFractions(reader, count) {
  const box = reader.doubles(6);
  const bytes = reader.take(3 * count);
  const positions = new Float64Array(count);
  for (let k = 0; k < count; ++k) {
    const steps = bytes[3 * k] | (bytes[3 * k + 1] << 8) | (bytes[3 * k + 2] << 16);
    positions[k] = box[k % 3] + box[3 + (k % 3)] * (steps / kMostSteps);
  }
  return positions;
}

function readRuns(reader, vertexCount) {
  const fixedBy = new Uint32Array(vertexCount);
  for (let v = 0; v < vertexCount; ) {
    const length = reader.varint();
    if (length === 0 || v + length > vertexCount) throw new Error('the page is damaged');
    fixedBy.fill(reader.varint(), v, v + length);
    v += length;
  }
  return fixedBy;
}

function readCorners(reader, vertexCount, triangleCount) {
  const triangles = new Uint32Array(3 * triangleCount);
  let corner = 0;
  for (let k = 0; k < triangles.length; ++k) {
    corner += reader.signed();
    if (corner < 0 || corner >= vertexCount) throw new Error(`corner ${k} names no vertex`);
    triangles[k] = corner;
  }
  return triangles;
}

/**
 * {positions: Float64Array(3n), triangles: Uint32Array(3m), field: Float64Array(n),
 *  fields: [field, and further ones], load: Float64Array(n) or null, colours: Uint8Array(768), fixedBy: Uint32Array(n)}. Throws Error when `bytes` are not
 * such a block. Needs a little-endian machine, as every one with a browser is.
 */
export function decodeMesh(bytes) {
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
  if (bytes.length < kHeadBytes || view.getUint32(0, true) !== kMagic)
    throw new Error('the page holds no mesh');
  if (view.getUint32(4, true) !== kVersion) throw new Error('the page holds another version');
  const [n, m, loads, exact] = [8, 12, 16, 20].map((at) => view.getUint32(at, true));
  const reader = new Reader(bytes);
  const positions = exact === 1 ? reader.doubles(3 * n) : readFractions(reader, 3 * n);
  const field = reader.doubles(n);
  const load = loads === 0 ? null : reader.doubles(n);
  const colours = reader.take(3 * kColourSteps);
  const fixedBy = readRuns(reader, n);
  const triangles = readCorners(reader, n, m);
  const fields = [field];
  while (reader.place < bytes.length) fields.push(reader.doubles(n));
  return { positions, triangles, field, fields, load, colours, fixedBy };
}

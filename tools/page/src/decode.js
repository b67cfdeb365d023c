// The page's mesh: one block of bytes, written by tools/qelm/page/page_data.cpp.
//
//   "QELM", version (u32), n, m (u32): vertices, triangles; l (u32): n with a load, else 0
//   positions   f64[3n]  packed xyz, the caller's units
//   field       f64[n]
//   load        f64[l]
//   colours     u8[768]  red, green, blue of 256 steps, the smallest value first
//   fixedBy     varint[n]  0: free; k: held by the k-th condition (see the page's facts)
//   corners     varint[3m] differences between successive corners, zigzag
//
// All little-endian. A varint has seven bits in each byte, the lowest first; every
// byte but the last has its top bit set. Zigzag: 0, -1, 1, -2 ... are 0, 1, 2, 3 ...

const kMagic = 0x4d4c4551; // "QELM"
const kVersion = 1;
const kHeadBytes = 20;
export const kColourSteps = 256;

/** Reads varints from `bytes`, beginning at `place`. */
class VarintReader {
  constructor(bytes, place) {
    this.bytes = bytes;
    this.place = place;
  }

  next() {
    let value = 0;
    for (let shift = 0; shift < 35; shift += 7) {
      if (this.place >= this.bytes.length) throw new Error('the page is cut short');
      const byte = this.bytes[this.place++];
      value |= (byte & 0x7f) << shift;
      if (byte < 0x80) return value >>> 0;
    }
    throw new Error('the page is damaged');
  }

  nextSigned() {
    const code = this.next();
    return (code >>> 1) ^ -(code & 1);
  }
}

export function bytesFromBase64(text) {
  const binary = atob(text.trim());
  const bytes = new Uint8Array(binary.length);
  for (let k = 0; k < binary.length; ++k) bytes[k] = binary.charCodeAt(k);
  return bytes;
}

function readCorners(reader, vertexCount, triangleCount) {
  const triangles = new Uint32Array(3 * triangleCount);
  let corner = 0;
  for (let k = 0; k < triangles.length; ++k) {
    corner += reader.nextSigned();
    if (corner < 0 || corner >= vertexCount) throw new Error(`corner ${k} names no vertex`);
    triangles[k] = corner;
  }
  return triangles;
}

/**
 * {positions: Float64Array(3n), triangles: Uint32Array(3m), field: Float64Array(n),
 *  load: Float64Array(n) or null, colours: Uint8Array(768), fixedBy: Uint32Array(n)}. Throws Error when `bytes` are not
 * such a block. Needs a little-endian machine, as every one with a browser is.
 */
export function decodeMesh(bytes) {
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
  if (bytes.length < kHeadBytes || view.getUint32(0, true) !== kMagic)
    throw new Error('the page holds no mesh');
  if (view.getUint32(4, true) !== kVersion) throw new Error('the page holds another version');
  const n = view.getUint32(8, true);
  const m = view.getUint32(12, true);
  let place = kHeadBytes;
  const take = (length) => {
    if (place + length > bytes.length) throw new Error('the page is cut short');
    place += length;
    return bytes.slice(place - length, place);
  };
  const positions = new Float64Array(take(24 * n).buffer);
  const field = new Float64Array(take(8 * n).buffer);
  const load = view.getUint32(16, true) === 0 ? null : new Float64Array(take(8 * n).buffer);
  const colours = take(3 * kColourSteps);
  const reader = new VarintReader(bytes, place);
  const fixedBy = Uint32Array.from({ length: n }, () => reader.next());
  const triangles = readCorners(reader, n, m);
  return { positions, triangles, field, load, colours, fixedBy };
}

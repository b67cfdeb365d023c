// The library's exports, as tools/playground compiles them for pages, for JavaScript: arrays in,
// arrays out, errors with the library's own words.

const kStatusOk = 0;

/** Room on the library's heap that is given back at the end of `use`. */
function withRoom(library, sizes, use) {
  const places = sizes.map((size) => library._malloc(Math.max(1, size)));
  try {
    if (places.includes(0)) throw new Error('the memory is not enough');
    return use(...places);
  } finally {
    places.forEach((place) => library._free(place));
  }
}

function check(library, status) {
  if (status === kStatusOk) return;
  throw new Error(library.UTF8ToString(library._qelmstatustext(status)));
}

// The heap may move whenever something is allocated: views of it are not kept.
const doublesAt = (library, place, count) => library.HEAPF64.subarray(place >> 3, (place >> 3) + count);
const intsAt = (library, place, count) => library.HEAP32.subarray(place >> 2, (place >> 2) + count);

/** A mesh with its factorised system. */
export class MeshSystem {
  /**
   * library: the instantiated module; positions: Float64Array(3n); triangles: 3m indices;
   * tags: n marks, not 0 where a vertex is held. With `robust`, fields stay between the held
   * values whatever the triangles look like. Throws Error in the library's words.
   */
  constructor(library, positions, triangles, tags, { robust = false } = {}) {
    this.library = library;
    this.vertexCount = tags.length;
    const n = tags.length;
    const m = triangles.length / 3;
    this.handle = withRoom(library, [24 * n, 12 * m, 4 * n, 4, 4], (xyz, corners, marks, status, handle) => {
      doublesAt(library, xyz, 3 * n).set(positions);
      intsAt(library, corners, 3 * m).set(triangles);
      intsAt(library, marks, n).set(tags);
      const construct = robust ? library._qelmctorRobustTagged : library._qelmctorTagged;
      construct(n, xyz, m, corners, marks, 0, status, handle);
      check(library, intsAt(library, status, 1)[0]);
      return intsAt(library, handle, 1)[0];
    });
    if (library._qelminfo(this.handle) !== 0) {
      this.free();
      throw new Error('the system is singular: a connected part has no fixed vertex');
    }
  }

  /** One value per vertex; `values` count where vertices are held, `load`, if any, elsewhere. */
  solve(values, load = null) {
    const { library, vertexCount: n } = this;
    return withRoom(library, [8 * n, load ? 8 * n : 0, 4], (field, weights, status) => {
      doublesAt(library, field, n).set(values);
      if (load) {
        doublesAt(library, weights, n).set(load);
        library._qelmsolvePTagged(this.handle, field, weights, field, status);
      } else {
        library._qelmsolveTagged(this.handle, field, field, status);
      }
      check(library, intsAt(library, status, 1)[0]);
      return doublesAt(library, field, n).slice();
    });
  }

  free() {
    this.library._qelmfree(this.handle);
    this.handle = 0;
  }
}

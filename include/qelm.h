/**
 * @file qelm.h
 * Smooth scalar fields on triangle meshes, with plain C linkage.
 *
 * Hand over a triangle mesh whose vertices carry tags; vertices tagged 1, 2 or
 * 3 are the ones whose value you will prescribe. qelmctorTagged() assembles
 * the piecewise-linear (P1) finite-element Laplacian of the surface and
 * factorises it once. After that, qelmsolveTagged() turns prescribed values
 * into a smooth field on the whole mesh, as often as you like, each time at
 * the price of one back-substitution.
 *
 * A complete program, one square with two opposite corners held at 0 and 1:
 *
 * @code{.c}
 *   #include <qelm.h>
 *   #include <stdio.h>
 *
 *   int main(void) {
 *     const double xyz[] = {0,0,0,  1,0,0,  1,1,0,  0,1,0};
 *     const int triangles[] = {0,1,2,  0,2,3};
 *     const int tags[] = {1, 0, 1, 0};
 *     const double values[] = {0, 0, 1, 0};
 *     double field[4];
 *     int status = 0;
 *     MeshSystem* system = NULL;
 *     qelmctorTagged(4, xyz, 2, triangles, tags, NULL, &status, &system);
 *     if (status != QELM_STATUS_OK || qelminfo(system) != 0) return 1;
 *     qelmsolveTagged(system, values, field, &status);
 *     printf("%g %g %g %g\n", field[0], field[1], field[2], field[3]);
 *     qelmfree(system);
 *     return 0;
 *   }
 * @endcode
 *
 * Terms used throughout:
 *  - n vertices, m triangles, t tagged (prescribed) vertices.
 *  - Coordinates: double[3n], packed x y z, lengths in the caller's unit.
 *  - Triangles: int[3m], three 0-based vertex indices each, packed.
 *  - Field: double[n], one value per vertex, in the caller's unit.
 *  - Input order: the vertex numbering of the caller's arrays.
 *  - System order: the numbering inside a MeshSystem. Tagged vertices come
 *    first, at 0 .. t-1, in increasing input order; free vertices fill
 *    t .. n-1 from the back: the first free input vertex is n-1, the next n-2.
 *
 * int is a signed 32-bit integer and double an IEEE 754 binary64 number. Arrays
 * belong to the caller unless a function says otherwise; no pointer is kept
 * beyond a call. Lengths, index ranges and pointers are checked only where a
 * function says so.
 *
 * No exception is turned into a status code: when memory runs out, the C++
 * exception std::bad_alloc leaves the call. Nothing is leaked then, and no
 * half-built handle becomes visible.
 *
 * Plain C99 and C++. Copyright the qelm developers, MIT licence.
 */
#ifndef QELM_H
#define QELM_H

#include <stdint.h>

/** The version of this header; the build reads it from here. */
#define QELM_VERSION_MAJOR 1
#define QELM_VERSION_MINOR 0
#define QELM_VERSION_PATCH 0

/* QELM_STATIC is for builds that link the library's objects directly. */
#if defined(_WIN32) && !defined(QELM_STATIC)
#ifdef QELM_BUILDING_LIBRARY
#define QELM_API __declspec(dllexport)
#else
#define QELM_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define QELM_API __attribute__((visibility("default")))
#else
#define QELM_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Status codes ------------------------------------------------------ */

/** Values written through the status out-parameters. */
enum {
  /** Success. A failed factorisation is a success too: ask qelminfo(). */
  QELM_STATUS_OK = 0,
  /** Vertex count less than 1 (constructor), null handle (solves, curves), or
      level count less than 0 (curves). */
  QELM_STATUS_BAD_COUNT_OR_HANDLE = 1,
  /** The handle holds no vertex order (solves, curves). */
  QELM_STATUS_NO_VERTEX_ORDER = 2,
  /** A triangle names the same vertex twice. */
  QELM_STATUS_REPEATED_VERTEX = 23,
  /** Triangle count less than 1, or a vertex is used by no triangle. */
  QELM_STATUS_UNUSED_VERTEX = 24,
  /** The coordinate, triangle, tag, field or level array is null. */
  QELM_STATUS_NULL_ARRAY = 25
};

/** What qelminfo() answers for a null handle; 0 to 3 come from the solver. */
enum { QELM_INFO_NO_HANDLE = 7 };

/* ---- Records ----------------------------------------------------------- */

/**
 * A mesh in system order with its factorised system; opaque. Made by
 * qelmctorTagged() and dupl(), released by qelmfree(). A null pointer means
 * "no mesh".
 */
typedef struct MeshSystem MeshSystem;

/**
 * The ends of level-line segments: a table of `rows` points and 3 columns, stored
 * column by column. All x come first, then all y, then all z: coordinate c of point
 * r is data[r + c * rows]. rows is twice the number of segments.
 */
typedef struct IsoPointMatrix {
  double* data; /**< null when rows is 0 */
  int64_t rows;
  int64_t cols; /**< always 3 */
} IsoPointMatrix;

/**
 * Which points belong together: a table of one row for each segment and 2 columns,
 * stored column by column. With s segments, row i is (i, i + s): the first ends are
 * the first s points, the second ends the last s, in segment order.
 */
typedef struct IsoEdgeMatrix {
  int32_t* data; /**< null when rows is 0 */
  int64_t rows;
  int64_t cols; /**< always 2 */
} IsoEdgeMatrix;

/* ---- Construction and release ------------------------------------------ */

/**
 * Builds a mesh system: renumbers the vertices, assembles the stiffness matrix
 *
 *   K_ab = sum over triangles of area * (grad phi_a . grad phi_b)
 *
 * of the P1 hat functions phi (Ciarlet, The Finite Element Method for Elliptic
 * Problems, 1978, ch. 2), and factorises its free-free block as L D L^T.
 *
 * @param[in]  vertexCount     n, at least 1.
 * @param[in]  vertices        double[3n], packed xyz, input order.
 * @param[in]  triangleCount   m, at least 1.
 * @param[in]  triangles       int[3m], every index in 0 .. n-1 (not checked).
 * @param[in]  tags            int[n]; 1, 2 and 3 mean "prescribed", any other
 *                             value means "free".
 * @param[out] taggedCountOut  May be null; receives t, the number of tagged
 *                             vertices. 0 for status 1 and 25 and for a
 *                             triangle count below 1.
 * @param[out] status          Not null; receives one of the codes below.
 * @param[out] handleOut       Not null; receives the new handle, or null.
 * @return Always 1, on success and on failure alike. Look at status.
 *
 * Status:    0 success; 1 vertexCount < 1; 24 triangleCount < 1; 25 a null
 *            array; 23 a triangle repeats a vertex; 24 a vertex lies in no
 *            triangle. Checked in this order, the first one wins. A failed
 *            factorisation is status 0: ask qelminfo().
 * Ownership: the caller owns the handle and gives it to qelmfree() once; the
 *            arrays are copied.
 * Threads:   may run at the same time as any other call.
 * Memory:    exhaustion leaves as std::bad_alloc, with handleOut at null. So does a
 *            factor of more than 2147483647 entries, which is known before memory
 *            is taken for it; meshes get there from many millions of vertices on,
 *            graphs without geometry far sooner.
 * Note:      a triangle with three different vertices but no area is accepted;
 *            it makes the matrix non-finite, which qelminfo() may not notice.
 *            Look for such triangles first and for finite values afterwards, or
 *            use qelmctorRobustTagged().
 * Since:     1.0.0
 */
QELM_API int qelmctorTagged(int vertexCount, const double* vertices, int triangleCount,
                            const int* triangles, const int* tags, int* taggedCountOut, int* status,
                            MeshSystem** handleOut);

/**
 * Makes a second handle for the same system. Mesh, matrices and factorisation
 * are shared, not copied; the vertex orders and tags are copied.
 *
 * @param[in]  h        Handle, or null: then nothing happens.
 * @param[out] copyOut  Receives the new handle; left alone when h is null.
 *
 * Errors:    none.
 * Ownership: the copy is independent; free both, in any order, from any thread.
 * Threads:   reads the handle only; must not overlap qelmfree() of h.
 * Memory:    exhaustion leaves as std::bad_alloc, with copyOut unwritten.
 * Since:     1.0.0
 */
QELM_API void dupl(const MeshSystem* h, MeshSystem** copyOut);

/**
 * Releases a handle. What it shares with copies goes with the last of them.
 *
 * @param[in] h  Handle, or null: then nothing happens.
 *
 * Errors:    none.
 * Ownership: h and, with the last copy, every pointer read from it end here.
 * Threads:   must not overlap any other call on h; handles that share a system
 *            may be freed from different threads.
 * Memory:    allocates nothing.
 * Since:     1.0.0
 */
QELM_API void qelmfree(MeshSystem* h);

/* ---- Accessors --------------------------------------------------------- */

/**
 * How the factorisation ended.
 *
 * @param[in] h  Handle, or null.
 * @return 7 when h is null; otherwise the solver's code: 0 success, 1 numerical
 *         issue, 2 no convergence, 3 invalid input.
 *
 * Errors:    none.
 * Ownership: none.
 * Threads:   reads the handle only; must not overlap qelmfree().
 * Memory:    allocates nothing.
 * Note:      NaN in the matrix (from triangles without area) may pass as 0.
 * Since:     1.0.0
 */
QELM_API int qelminfo(const MeshSystem* h);

/**
 * Hands out the coordinates, in system order.
 *
 * @param[in]  h               Handle, or null.
 * @param[out] coordinatesOut  Receives a pointer to double[3n]; left alone when
 *                             h is null.
 * @return n, the vertex count; 0 when h is null.
 *
 * Errors:    none.
 * Ownership: the library's. Valid until h and all its copies are freed; do not
 *            write through it.
 * Threads:   reads the handle only; must not overlap qelmfree().
 * Memory:    allocates nothing.
 * Since:     1.0.0
 */
QELM_API int qelverts(const MeshSystem* h, const double** coordinatesOut);

/**
 * Hands out the triangles in input order, their vertices in system numbering.
 *
 * @param[in]  h           Handle, or null.
 * @param[out] indicesOut  Receives a pointer to int[3m]; left alone when h is
 *                         null.
 * @return n, the vertex count (see the note); 0 when h is null.
 *
 * Errors:    none.
 * Ownership: the library's. Valid until h and all its copies are freed; do not
 *            write through it.
 * Threads:   reads the handle only; must not overlap qelmfree().
 * Memory:    allocates nothing.
 * Note:      the result is the vertex count, not the triangle count. That is
 *            intended and relied upon; you know m from the construction.
 * Since:     1.0.0
 */
QELM_API int qeltris(const MeshSystem* h, const int** indicesOut);

/**
 * Counts the handles that share h's factorisation.
 *
 * @param[in] h  Handle, or null.
 * @return 1 for a handle that was never duplicated, one more for each living
 *         copy; 0 when h is null or holds no factorisation.
 *
 * Errors:    none.
 * Ownership: none.
 * Threads:   reads the handle only; must not overlap qelmfree() of h. While
 *            other threads copy or free, the answer is a snapshot.
 * Memory:    allocates nothing.
 * Since:     1.0.0
 */
QELM_API int usecount(const MeshSystem* h);

/* ---- Solving ----------------------------------------------------------- */

/**
 * Solves for one value per vertex, holding the tagged vertices fixed: the
 * discrete harmonic field, K_ff u_f = -K_fb u_b. Reuses the factorisation, so
 * repeated calls are cheap.
 *
 * @param[in]  handle  System from qelmctorTagged(), or null.
 * @param[in]  values  double[n], input order; read at tagged vertices only.
 * @param[out] result  double[n], input order; may be the same array as values.
 *                     Tagged vertices receive their own value, bit for bit.
 * @param[out] status  Not null; receives one of the codes below.
 *
 * Status:    0 success; 1 null handle; 2 the handle has no vertex order. Unless
 *            the status is 0, result is not touched. A failed factorisation is
 *            status 0 with 0.0 at every free vertex: ask qelminfo().
 * Ownership: the caller owns both arrays; no pointer is kept.
 * Threads:   reads the handle only; any number of solves may run at once on one
 *            handle, each with its own arrays. Must not overlap qelmfree().
 * Memory:    exhaustion leaves as std::bad_alloc, with result untouched.
 * Since:     1.0.0
 */
QELM_API void qelmsolveTagged(const MeshSystem* handle, const double* values, double* result,
                              int* status);

/**
 * Solves with a load as well: K_ff u_f = -K_fb u_b - load_f, the rows of the free
 * vertices of K u + load = 0. The load enters value for value, without mass matrix
 * or scaling: for the Poisson equation laplace(u) = f pass the integral of f times
 * each vertex's hat function, for instance a third of the area of the triangles
 * around the vertex, times f.
 *
 * @param[in]  handle  System from qelmctorTagged(), or null.
 * @param[in]  values  double[n], input order; read at tagged vertices only.
 * @param[in]  load    double[n], input order; read at free vertices only.
 * @param[out] result  double[n], input order. Any of the three arrays may be the
 *                     same one. Tagged vertices receive their own value, bit for
 *                     bit.
 * @param[out] status  Not null; receives one of the codes below.
 *
 * Status:    0 success; 1 null handle; 2 the handle has no vertex order. Unless
 *            the status is 0, result is not touched. A failed factorisation is
 *            status 0 with 0.0 at every free vertex: ask qelminfo().
 * Ownership: the caller owns the arrays; no pointer is kept.
 * Threads:   reads the handle only; any number of solves may run at once on one
 *            handle, each with its own arrays. Must not overlap qelmfree().
 * Memory:    exhaustion leaves as std::bad_alloc, with result untouched.
 * Note:      with a load of zeros the result is that of qelmsolveTagged(), except
 *            that a zero may have the other sign.
 * Since:     1.0.0
 */
QELM_API void qelmsolvePTagged(const MeshSystem* handle, const double* values, const double* load,
                               double* result, int* status);

/* ---- Welding ----------------------------------------------------------- */

/**
 * Merges vertices that lie closer together than a tolerance, renumbers the
 * triangles, and leaves out those that collapse or repeat an earlier one by
 * it. For arrays on their way to qelmctorTagged(); touches no handle.
 *
 * Two vertices are merged when their squared distance dx*dx + dy*dy + dz*dz is
 * strictly below tolerance * tolerance. Merging carries on from vertex to
 * vertex (single linkage): the ends of a chain of near vertices become one,
 * however far apart they are. A cluster keeps the position of its vertex with
 * the lowest index, bit for bit, and clusters keep the order of these.
 *
 * @param[in]  vertexCount          n, at least 0.
 * @param[in]  vertices             double[3n], packed xyz.
 * @param[in]  triangleCount        m, at least 0.
 * @param[in]  triangles            int[3m], every index in 0 .. n-1 (not
 *                                  checked).
 * @param[in]  tolerance            Weld distance in the unit of the
 *                                  coordinates, at least 0.
 * @param[out] weldedVertices       double[3n]; the kept vertices come first,
 *                                  packed, the rest is not touched. May be the
 *                                  same array as vertices.
 * @param[out] weldedTriangles      int[3m]; likewise the kept triangles, each
 *                                  with its corners in input order. May be the
 *                                  same array as triangles.
 * @param[out] vertexMap            int[n]; receives for each input vertex its
 *                                  index in weldedVertices.
 * @param[out] weldedVertexCount    Receives the number of kept vertices.
 * @param[out] weldedTriangleCount  Receives the number of kept triangles.
 * @return 0 success; 1 vertexCount < 0, triangleCount < 0 or tolerance < 0, with
 *         no output touched, not even the counts.
 *
 * Errors:    none besides. With vertexCount 0 both counts become 0, whatever
 *            triangleCount says, nothing else is read or written, and each
 *            count pointer may be null. With more vertices all outputs are
 *            needed (not checked).
 * Ownership: the caller owns all arrays; no pointer is kept.
 * Threads:   may run at the same time as any other call, with other outputs.
 * Memory:    exhaustion leaves as std::bad_alloc, with both counts at 0 and the
 *            other outputs undefined.
 * Note:      vertices exactly the tolerance apart stay apart. Tolerance 0 merges
 *            nothing, not even equal vertices; NaN likewise. A vertex with a
 *            NaN or infinite coordinate is never merged.
 * Since:     1.0.0
 */
QELM_API int qelmWeld(int vertexCount, const double* vertices, int triangleCount,
                      const int* triangles, double tolerance, double* weldedVertices,
                      int* weldedTriangles, int* vertexMap, int* weldedVertexCount,
                      int* weldedTriangleCount);

/* ---- Isolines and heat map --------------------------------------------- */

/**
 * Cuts a mesh, read in the way that the note describes, with levels of a field:
 * straight segments, each with two points of its own, not joined and not labelled
 * with their level.
 *
 * @param[in]  handle     System from qelmctorTagged(); null gives empty tables.
 * @param[in]  field      double[n], SYSTEM order.
 * @param[in]  nvals      Number of levels, at least 0.
 * @param[in]  vals       double[nvals], in any order.
 * @param[out] pointsOut  Not null; receives a new table of 2s points, s being the
 *                        number of segments.
 * @param[out] edgesOut   Not null; receives a new table of s rows.
 *
 * Errors:    none are reported.
 * Ownership: both tables are the caller's and go back through qelfreeisoline();
 *            their blocks are from the C heap.
 * Threads:   reads the handle only; must not overlap qelmfree().
 * Memory:    grows with the number of segments, not with triangles times levels.
 *            Exhaustion leaves as std::bad_alloc, with nothing written or leaked.
 * Note:      this export reads the handle's coordinate and triangle arrays as
 *            tables of n rows and three columns stored COLUMN BY COLUMN, although
 *            qelverts() and qeltris() hand out packed rows: corner k of triangle
 *            row t is element t + k * n, coordinate c of vertex v is element
 *            v + c * n. It visits n triangle rows, however many triangles there
 *            are; rows that do not lie inside the array are skipped. This is
 *            intended and kept for callers that arrange their data so. It does not
 *            give the level curves of the mesh as it was constructed: those come
 *            from qelmcurvesTagged().
 * Note:      a segment joins the points of two edges whose position of the level is
 *            in [0, 1], both ends included, or NaN. So a level that equals a
 *            vertex's value gives segments without length, one that runs along an
 *            edge or meets a NaN gives points with NaN, and nothing is merged.
 *            Order: by pair of edges (1 and 2, then 2 and 0, then 0 and 1), then by
 *            triangle row, then by level in the caller's order.
 * Since:     1.0.0
 */
QELM_API void qelisoline(const MeshSystem* handle, const double* field, int nvals,
                         const double* vals, IsoPointMatrix** pointsOut, IsoEdgeMatrix** edgesOut);

/**
 * Gives the tables of qelisoline() back.
 *
 * @param[in] points  Table, or null.
 * @param[in] edges   Table, or null.
 *
 * Errors:    none; tables from elsewhere are not recognised.
 * Ownership: both tables end here, with their data.
 * Threads:   may run at the same time as any other call.
 * Memory:    allocates nothing.
 * Since:     1.0.0
 */
QELM_API void qelfreeisoline(IsoPointMatrix* points, IsoEdgeMatrix* edges);

/**
 * Writes the mesh with a field as path + ".obj" and path + ".mtl": a heat map. The
 * texture coordinate is the field scaled to [0, 1] and reversed, u = 0 at the
 * largest value and u = 1 at the smallest; the material names the colour ramp
 * "viridis.PNG", which is not written and is looked for beside the files.
 *
 * @param[in] handle  System from qelmctorTagged(); null writes nothing.
 * @param[in] field   double[n], SYSTEM order.
 * @param[in] path    Not null; zero-terminated base name of both files. Bytes on
 *                    Linux; on Windows in the code page of the narrow file
 *                    functions.
 *
 * Errors:    a file that cannot be opened ends the export with one line on the
 *            standard error stream, "couldn't open file <path> for writing."; an
 *            OBJ that was written stays. Failures in writing are not reported.
 * Ownership: none; no pointer is kept.
 * Threads:   reads the handle only; must not overlap qelmfree(), nor another export
 *            to the same path.
 * Memory:    exhaustion leaves as std::bad_alloc; files may be incomplete then.
 * Note:      the line that names the MTL file holds the whole path as given, with
 *            its folders. Six significant digits. Text mode: line ends are those of
 *            the platform. A field of equal values gives texture coordinates 0/0, not
 *            a number, as the platform writes it: "-nan" with glibc on x86-64.
 * Since:     1.0.0
 */
QELM_API void wobj(const MeshSystem* handle, const double* field, const char* path);

/* ---- Integer codec ----------------------------------------------------- */

/**
 * Carries an integer as a point on the upper half of the unit sphere. The low and
 * the high byte become x and y in [-0.5, 0.5], z completes the length to 1. All
 * arithmetic is in 32-bit floats.
 *
 * @param[in]  value  -1 .. 65534.
 * @param[out] x,y,z  Receive the point. Written only if none is null; 0, 0, 0 for
 *                    a value out of range.
 * @return 0 on success, -1 for a null pointer or a value out of range.
 *
 * Errors:    the return value.
 * Ownership: none.
 * Threads:   no state.
 * Memory:    allocates nothing.
 * Note:      65535 is refused on purpose: its two bytes are those of -1.
 * Since:     1.0.0
 */
QELM_API int encode_integer_to_sphere(int value, float* x, float* y, float* z);

/**
 * Reads the integer back from a direction made by encode_integer_to_sphere(), or
 * from its reverse, which stands for the same value.
 *
 * @param[in] x,y,z  The direction. z decides by its sign alone whether x and y are
 *                   taken negated; the length is not looked at.
 * @return The value, -1 .. 65534.
 *
 * Errors:    none: every input decodes to something.
 * Ownership: none.
 * Threads:   no state.
 * Memory:    allocates nothing.
 * Note:      a coordinate off the range clamps to the byte 255, below it as well as
 *            above; this is intended. NaN reads as the byte 0.
 * Since:     1.0.0
 */
QELM_API int decode_integer_from_sphere(float x, float y, float z);

/* ---- Information window (Windows only) --------------------------------- */

/* These two functions do not exist on other platforms. */
#ifdef _WIN32

/**
 * Opens the small information window, with the product's title, version and links,
 * on a thread of its own, and returns at once. Looked at in this order: the switch
 * that suppresses the window, whether one is recorded as open, memory, the thread.
 *
 * @param[in] logo   HBITMAP that the window shows; it is not copied and must stay
 *                   alive as long as the window. With null no window is made.
 * @param[in] owner  HWND that owns the window and is not disabled by it, or null.
 *                   The window is centred on it.
 * @return 1 the window's thread was started; 2 a window is recorded as open, or
 *         memory ran out; 3 suppressed, see below, and no window is recorded as open
 *         any more; 0 no thread could be started.
 *
 * Errors:    the return value. What fails later, on the window's thread, ends that
 *            thread silently.
 * Ownership: logo and owner stay the caller's; neither is ever released.
 * Threads:   may be called from any thread. What keeps a second window from being
 *            opened is an unlocked test, so calls at the same time may open two.
 * Memory:    throws nothing. With result 0, 16 bytes are not given back.
 * Note:      the environment variable BLOCK_FILEIO with a value of 1 to 255
 *            characters suppresses the window; an empty or longer one does not.
 * Note:      without an owner, and with one whose top edge lies exactly at row 0 of
 *            the screen, the window's corner is at (300, 300).
 * Note:      the library must stay loaded as long as the window is there.
 * Note:      the window is created from the class of the wide name
 *            "QuobinsCoolClass", which the library does not register under that
 *            full name: unless the process has done so by other means, 1 is
 *            returned and no window appears. This is intended.
 * Since:     1.0.0
 */
QELM_API int doPoshModal(void* logo, void* owner);

/**
 * The information window that is recorded as open.
 *
 * @return Its HWND, or null. Null as well once the window's close box has handled
 *         its first message, which it does when it is first shown; this is intended.
 *
 * Errors:    none.
 * Ownership: the window belongs to its thread.
 * Threads:   may be called from any thread; the answer is a snapshot.
 * Memory:    allocates nothing.
 * Since:     1.0.0
 */
QELM_API void* getPoshHandle(void);

#endif /* _WIN32 */

/* ---- Additions --------------------------------------------------------- */
/* What follows came to the interface later than the functions above and is
   built on them; nothing above depends on it. */

/**
 * What qelmcheckTagged() returns besides the statuses of the constructor. These are
 * defects that the constructor does not look for.
 */
enum {
  /** A triangle names a vertex outside 0 .. n-1. Do not construct. */
  QELM_CHECK_INDEX_OUT_OF_RANGE = 101,
  /** A coordinate is infinite or not a number. */
  QELM_CHECK_NOT_FINITE = 102,
  /** The quality of a triangle is below 2^-44, see QelmMeshReport. */
  QELM_CHECK_NEAR_ZERO_AREA = 103,
  /** The longest edge of a triangle is not within 1e-60 .. 1e60. */
  QELM_CHECK_SIZE_OUT_OF_RANGE = 104,
  /** A connected part of the mesh has no tagged vertex. */
  QELM_CHECK_UNTAGGED_PART = 105
};

/** How often something was found, and where first. */
typedef struct QelmFinding {
  int64_t count;
  int64_t first; /**< lowest index, of what the finding says; -1 if there is none */
} QelmFinding;

/**
 * What qelmcheckTagged() found. Each finding looks at the mesh by itself, whatever
 * the others found:
 *  - A vertex is used when any triangle names it, and triangles connect those of
 *    their corners that exist; in both cases whatever else is wrong with them.
 *  - Edges and repeated triangles are those of triangles with three different
 *    vertices in 0 .. n-1.
 *  - Area and size are those of such triangles with finite corners. Of the two,
 *    a triangle is counted under the first that applies.
 *
 * With L the longest edge of a triangle, h the height on it, M the largest absolute
 * coordinate of its corners and W the larger of L and M, its quality is
 *
 *   h * h / (L * W),
 *
 * which does not depend on the unit. It says what the arithmetic leaves of the
 * triangle: with e = 2^-52, fields on a mesh of such triangles have a relative error
 * of about e / quality, from slivers and from being far away from the origin alike.
 * Below 2^-44 (256 e) the area counts as near zero: near the origin, when h is less
 * than 2.4e-7 L. A few worse triangles in a good mesh may do no harm.
 */
typedef struct QelmMeshReport {
  /* Defects, in the order of the codes. */
  QelmFinding indexOutOfRange; /**< triangles naming a vertex outside 0 .. n-1 */
  QelmFinding repeatedVertex;  /**< triangles in range naming a vertex twice */
  QelmFinding unusedVertex;    /**< vertices that no triangle names */
  QelmFinding notFinite;       /**< vertices with an infinite or NaN coordinate */
  QelmFinding nearZeroArea;    /**< triangles with a quality below 2^-44 */
  QelmFinding sizeOutOfRange;  /**< triangles with L not within 1e-60 .. 1e60 */
  QelmFinding untaggedPart;    /**< parts without tagged vertex; first: lowest vertex */
  /* For information. */
  QelmFinding part;             /**< connected parts; first: lowest used vertex */
  QelmFinding taggedVertex;     /**< vertices tagged 1, 2 or 3 */
  QelmFinding crowdedEdge;      /**< edges of three or more triangles; first: triangle */
  QelmFinding boundaryLoop;     /**< groups of boundary edges (one triangle) that are
                                     connected by vertices; first: lowest vertex */
  QelmFinding opposedEdge;      /**< edges of two triangles that run through them the same
                                     way, as they do where one is flipped; first: triangle */
  QelmFinding repeatedTriangle; /**< triangles with the three vertices of an earlier one */
  QelmFinding coincidentVertex; /**< vertices exactly at the place of an earlier one */
  int64_t worstTriangle;        /**< first triangle of the lowest quality; -1 if none has one */
  double worstQuality;          /**< its quality; infinite if none has one */
} QelmMeshReport;

/**
 * Looks for what is wrong with a mesh, before anything is built from it. Safe for any
 * content of arrays of the stated lengths. May be called in place of a construction
 * that is bound to fail.
 *
 * @param[in]  vertexCount    n.
 * @param[in]  vertices       double[3n], packed xyz, any values.
 * @param[in]  triangleCount  m.
 * @param[in]  triangles      int[3m], any values.
 * @param[in]  tags           int[n], any values; 1, 2 and 3 mean "prescribed".
 * @param[out] reportOut      May be null; receives what was found. With status 1 or 25
 *                            or a triangle count below 1, it says that nothing was.
 * @return 0 when qelmctorTagged() will construct the mesh and its fields are
 *         determined; else the code of the first defect in the order of Status.
 *
 * Status:    1 vertexCount < 1; 24 triangleCount < 1; 25 a null array; 101 an index
 *            out of range; 23 a triangle repeats a vertex; 24 a vertex lies in no
 *            triangle; 102 a coordinate not finite; 103 an area near zero; 104 a
 *            size out of range; 105 a part without tagged vertex. Checked in this
 *            order, the first one wins. 1, 23, 24 and 25 are also what the
 *            constructor answers then; with 102 to 105 it answers 0, but its fields
 *            are not what they should be; with 101 it must not be called.
 * Ownership: the caller owns everything; no pointer is kept.
 * Threads:   may run at the same time as any other call.
 * Memory:    up to 64 bytes for each triangle and 25 for each vertex while it
 *            runs; the time is that of sorting the edges. Exhaustion leaves as
 *            std::bad_alloc, with reportOut unwritten.
 * Note:      what is for information never makes the result other than 0. The solves
 *            take such meshes; other functions may have more to say about them.
 * Since:     1.0.0
 */
QELM_API int qelmcheckTagged(int vertexCount, const double* vertices, int triangleCount,
                             const int* triangles, const int* tags, QelmMeshReport* reportOut);

/**
 * Solves for many fields at once: what qelmsolveTagged() or, with loads,
 * qelmsolvePTagged() gives for each of them, with the same bits. Several fields go
 * through the factorisation together, which is much faster than one after another.
 *
 * @param[in]  handle   System from qelmctorTagged(), or null.
 * @param[in]  count    Number of fields, 0 or more.
 * @param[in]  values   double[count * n]: count fields one after another, each in
 *                      input order; read at tagged vertices only.
 * @param[in]  loads    double[count * n], laid out alike; read at free vertices only.
 *                      Null means no loads.
 * @param[out] results  double[count * n], laid out alike. May be the same array as
 *                      values, or loads, or both; must not overlap them otherwise.
 * @param[out] status   Not null; receives one of the codes below.
 *
 * Status:    0 success; 1 null handle; 2 the handle has no vertex order; 1
 *            count < 0. Checked in this order, the first one wins. Unless the status
 *            is 0, and with a count of 0, results is not touched and the arrays may be
 *            null. A failed factorisation is status 0 with 0.0 at every free vertex:
 *            ask qelminfo().
 * Ownership: the caller owns the arrays; no pointer is kept.
 * Threads:   reads the handle only; any number of solves may run at once on one
 *            handle, each with its own results. Must not overlap qelmfree().
 * Memory:    up to 18 doubles for each vertex while it runs, however many fields.
 *            Exhaustion leaves as std::bad_alloc, with results untouched.
 * Since:     1.0.0
 */
QELM_API void qelmsolveManyTagged(const MeshSystem* handle, int count, const double* values,
                                  const double* loads, double* results, int* status);

/** What a checked solve says besides. */
enum {
  /** The factorisation failed, see qelminfo(). */
  QELM_STATUS_NOT_FACTORISED = 108,
  /** The value of a tagged vertex is infinite or not a number. */
  QELM_STATUS_VALUE_NOT_FINITE = 109,
  /** The load of a free vertex is infinite or not a number. */
  QELM_STATUS_LOAD_NOT_FINITE = 110,
  /** The solution is infinite or not a number: triangles are too thin to compute with, or
      numbers too large. */
  QELM_STATUS_FIELD_NOT_FINITE = 111
};

/**
 * Solves like qelmsolveManyTagged(), with the same bits, and looks at the numbers: at
 * those that are read before anything is written, and at the fields. For callers who do
 * not know what their arrays hold; it takes 1 to 2 % longer.
 *
 * @param[in]  handle    System from qelmctorTagged(), or null.
 * @param[in]  count     Number of fields, 0 or more.
 * @param[in]  values    double[count * n]: count fields one after another, each in
 *                       input order; read at tagged vertices only.
 * @param[in]  loads     double[count * n], laid out alike; read at free vertices only.
 *                       Null means no loads.
 * @param[out] results   double[count * n], laid out alike. May be the same array as
 *                       values, or loads, or both; must not overlap them otherwise.
 * @param[out] firstOut  May be null; receives the index of the first number that is not
 *                       finite, with status 109 in values, 110 in loads, 111 in results:
 *                       n times its field, plus its vertex. -1 with any other status.
 * @param[out] status    Not null; receives one of the codes below.
 *
 * Status:    0 success; 1 null handle; 2 the handle has no vertex order; 1
 *            count < 0; 108 the factorisation failed; 109 the value of a tagged vertex
 *            is not finite; 110 the load of a free vertex is not finite; 111 the field
 *            is not finite at a free vertex. Checked in this order, the first one wins.
 *            Unless the status is 0 or 111, and with a count of 0, results is not
 *            touched; with status 1 and 2, and with a count of 0, the arrays may be null.
 * Ownership: the caller owns the arrays; no pointer is kept.
 * Threads:   reads the handle only; any number of solves may run at once on one
 *            handle, each with its own results. Must not overlap qelmfree().
 * Memory:    that of qelmsolveManyTagged(). Exhaustion leaves as std::bad_alloc, with
 *            results, firstOut and status untouched.
 * Since:     1.0.0
 */
QELM_API void qelmsolveCheckedTagged(const MeshSystem* handle, int count, const double* values,
                                     const double* loads, double* results, int64_t* firstOut,
                                     int* status);

/**
 * Level curves as polylines: points, curve after curve, and for each curve where
 * it starts, which level it has and whether it is closed. The points of curve c
 * are points[3*starts[c]] up to points[3*starts[c + 1] - 1]. A closed curve leads
 * on from its last point to its first, which is not repeated.
 *
 * Without curves the counts are 0 and the four arrays null.
 */
typedef struct QelmCurves {
  int64_t curveCount; /**< c, number of curves */
  int64_t pointCount; /**< p, number of points of all curves */
  double* points;     /**< double[3p], packed xyz */
  int64_t* starts;    /**< int64_t[c + 1], in points; starts[c] is p */
  int32_t* levels;    /**< int32_t[c], index of the curve's level in the caller's array */
  int32_t* closed;    /**< int32_t[c], 1 closed, 0 open */
} QelmCurves;

/**
 * Cuts the mesh of a handle at levels of a field and joins the pieces into
 * curves. The field is linear on every triangle; all triangles are cut, and a
 * crossing of a level and an edge is one point, shared by the triangles there.
 *
 * Which curves. A value at or above a level counts as above it, everywhere alike.
 * The curves of a level are what separates above from below: simple polylines,
 * closed or from boundary to boundary, also where the level passes through
 * vertices, along edges or over flat regions. No piece has length zero or is there
 * twice: neighbouring points at one place are one point; a lone vertex or a ridge
 * of edges that just reaches the level has no curve, as the bottom of a valley has
 * none; a curve that comes back to a vertex is cut there into closed rounds. (Where
 * a surface folds within the rounding of its coordinates, pieces may still touch.)
 * The highest value of a field has curves only around plateaus and along the
 * boundary, the lowest none: to draw them all, choose levels in between. Open curves
 * also end
 *  - at triangles with a corner whose value is NaN, which are holes;
 *  - at edges where more than two triangles (holes not counted) meet. Pieces along
 *    such an edge belong to their sheets and may coincide. Repeated triangles make
 *    their edges such edges: remove them first.
 *
 * Direction. Higher values lie at the left, seen from where the triangles are
 * counter-clockwise. Where neighbours are oriented against each other, curves stay
 * whole and take the direction that is right for most of their pieces; of two that
 * are right for as many, the one whose points come first, as below.
 *
 * Order. Curves come by level, in the order of the caller's array. A level that is
 * there twice has its curves twice; a NaN has none. Within a level, curves are in
 * lexicographic order of their points: by x, y, z of the first, then of the second,
 * and so on, and open before closed. A closed curve starts at its least point in
 * that sense. Thus neither
 * the numbering of the vertices nor the order of the triangles matters: the result
 * is the same, bit for bit.
 *
 * Accuracy. With u = 2^-53, every coordinate is within
 * 3 u |q - p| + u max(|p|, |q|) of the exact crossing of the edge from p to q, and
 * between p and q. A level at an end's value is exactly at that end. An infinite
 * value draws the crossing to the other end of its edge, as ever larger finite
 * values do; between two infinite values it is in the middle.
 *
 * @param[in]  handle      System from qelmctorTagged(), or null.
 * @param[in]  field       double[n], input order: the order of the caller's arrays,
 *                         in which the solves give their results.
 * @param[in]  levelCount  Number of levels, 0 or more.
 * @param[in]  levels      double[levelCount], in any order; may be null if there
 *                         are none.
 * @param[out] curvesOut   Not null; receives a new record, or null.
 * @param[out] status      Not null; receives one of the codes below.
 *
 * Status:    0 success, also without any curve; 1 null handle; 2 the handle has no
 *            vertex order; 1 levelCount < 0; 25 field is null, or levels is null
 *            with levelCount > 0. Checked in this order, the first one wins. Unless
 *            the status is 0, curvesOut receives null.
 * Ownership: the caller owns the record and gives it to qelmfreecurves() once; no
 *            pointer is kept.
 * Threads:   reads the handle only; any number of cuts may run at once on one
 *            handle. Must not overlap qelmfree().
 * Memory:    the result, and while the call runs 4 bytes per vertex and about 100
 *            bytes per point; the time is that of one pass over the mesh, with a
 *            search among the levels per vertex, plus that of the points and of
 *            sorting the curves. Exhaustion leaves as std::bad_alloc, with curvesOut
 *            at null; so do more than 2^31 points of different levels.
 * Note:      in contrast to the records of segments, this is in input order, covers
 *            the mesh as constructed and tells levels apart.
 * Since:     1.0.0
 */
QELM_API void qelmcurvesTagged(const MeshSystem* handle, const double* field, int levelCount,
                               const double* levels, QelmCurves** curvesOut, int* status);

/**
 * Releases a record of curves and its arrays.
 *
 * @param[in] curves  Record from qelmcurvesTagged(), or null: then nothing happens.
 *
 * Errors:    none.
 * Ownership: the record and the arrays in it end here.
 * Threads:   must not overlap any other use of the record.
 * Memory:    allocates nothing.
 * Since:     1.0.0
 */
QELM_API void qelmfreecurves(QelmCurves* curves);

/**
 * What the robust construction says besides the statuses of the constructor and
 * QELM_CHECK_NOT_FINITE.
 */
enum {
  /** The flips that make every weight positive did not come to an end within their
      limit, see qelmctorRobustTagged(). Millions of random meshes never got there. */
  QELM_STATUS_ENDLESS_FLIPS = 106
};

/**
 * Builds a mesh system as qelmctorTagged() does, for meshes whose triangles are as they
 * are: obtuse, slivers, without area, with coincident vertices, three or more at an
 * edge, flipped, repeated, on one-sided surfaces. Its matrix comes from a better
 * triangulation of the same surface between the same vertices (intrinsic Delaunay
 * flips: Bobenko and Springborn 2007; on two sheets over the triangles: Sharp and Crane,
 * A Laplacian for nonmanifold triangle meshes, 2020). The mesh in the handle is the
 * mesh as given; only the matrix, and so the solved fields, differ.
 *
 * What is promised:
 *  - Where the plain matrix is good, the handle has that matrix, bit for bit: where, in the
 *    rows of free vertices, all entries are finite and none off the diagonal is above 1e-12,
 *    and no triangle with a free vertex is steep, having an angle below 1.8 or above 178.2
 *    degrees (a cotangent above 32 in size).
 *  - In the rows of free vertices, no entry off the diagonal is positive (of a good plain
 *    matrix none is above 1e-12), and the rows of K sum to zero but for the rounding of the
 *    sum.
 *  - Without a load, every field of finite values up to 1e280 is finite and lies within
 *    the range of the values prescribed in its connected part. That is exact, on good
 *    matrices as well: what rounding takes outside is moved to the nearest bound. If the
 *    factorisation failed, fields are 0.0 as on any handle.
 *  - Vertices and triangles may be numbered and oriented otherwise: the matrix changes by
 *    less than 1e-12 of each row's diagonal, and fields by less than 1e-12 of the largest
 *    prescribed value. With a steep triangle the matrix does not change at all, and fields
 *    by at most 2^-53 of that value for each term that the solve sums on one way through the
 *    factor, however much the weights differ. Without one, weights round by 2^-52 of up to
 *    32^2, and fields as those of any well-shaped mesh. (Measured: half a million random
 *    heaps of 30 vertices, fields within 3e-14; meshes of up to 90 thousand vertices, 6e-14.
 *    Vertices at exactly one place are told apart by nothing but their numbers: of meshes
 *    that have them this is not promised.)
 *  - The matrix has the same bits on every system.
 *  - Edges with both ends prescribed stay edges: a prescribed curve is not torn.
 *  - On good and bad triangulations alike, errors fall with the square of the edges'
 *    length, as far as the vertices represent the surface.
 *
 * A triangle whose height is below 2^-26 of its longest edge counts as that high (2^-22
 * where the foot of the height is that near to a vertex). No edge is lengthened, no
 * vertex moved or merged: vertices at one place that no triangle connects are
 * not connected.
 *
 * @param[in]  vertexCount     n, at least 1.
 * @param[in]  vertices        double[3n], packed xyz, input order.
 * @param[in]  triangleCount   m, at least 1.
 * @param[in]  triangles       int[3m], every index in 0 .. n-1 (not checked).
 * @param[in]  tags            int[n]; 1, 2 and 3 mean "prescribed", any other
 *                             value means "free".
 * @param[out] taggedCountOut  May be null; receives t, the number of tagged
 *                             vertices. 0 for status 1 and 25 and for a
 *                             triangle count below 1.
 * @param[out] status          Not null; receives one of the codes below.
 * @param[out] handleOut       Not null; receives the new handle, or null.
 * @return Always 1, on success and on failure alike. Look at status.
 *
 * Status:    0 success; 1 vertexCount < 1; 24 triangleCount < 1; 25 a null
 *            array; 23 a triangle repeats a vertex; 24 a vertex lies in no
 *            triangle; 102 a coordinate not finite; 106 endless flips. Checked
 *            in this order, the first one wins. A failed factorisation is status
 *            0: ask qelminfo().
 * Ownership: the caller owns the handle and gives it to qelmfree() once; the
 *            arrays are copied.
 * Threads:   may run at the same time as any other call.
 * Memory:    before the factorisation up to 80 bytes for each triangle, or 125 unless the
 *            triangles at each edge that is not prescribed are two that run through it in
 *            opposite directions. The handle keeps 4 bytes more for each free vertex, and
 *            a solve takes 16 more for each field and group of connected free vertices.
 *            Exhaustion leaves as std::bad_alloc, with handleOut at null; so do more than
 *            357 million triangles.
 * Note:      flips take some 40 ns each. Most meshes need fewer than 2 for each triangle; a
 *            flat ring of m triangles between free vertices on its two rims took up to
 *            m / 14. Status 106 follows after 10 million flips and, for each triangle, 200
 *            and the lesser of m / 2 and 20,000.
 * Note:      the matrix depends on the tags.
 * Note:      qelmsolvePTagged() keeps no range, as a load knows none; with a load of
 *            zeros its result is that of qelmsolveTagged() only where rounding keeps
 *            the range.
 * Since:     1.0.0
 */
QELM_API int qelmctorRobustTagged(int vertexCount, const double* vertices, int triangleCount,
                                  const int* triangles, const int* tags, int* taggedCountOut,
                                  int* status, MeshSystem** handleOut);

/** What the robust construction does to a mesh. All 0 where the plain matrix is good. */
typedef struct QelmRobustReport {
  int64_t changed;          /**< 1 if the matrix is not the plain one, else 0 */
  int64_t sheets;           /**< 2 over a surface that is open where nothing is prescribed, that
                                 has one side only, or is not a surface at all; else 1 */
  int64_t flatTriangles;    /**< triangles too flat as they are */
  int64_t notDelaunayEdges; /**< edges whose opposite angles add up to more than a straight
                                 one, at a boundary twice the one; where three or more
                                 triangles meet, half of the neighbours that are so */
  int64_t flips;            /**< flips made, of all sheets */
} QelmRobustReport;

/**
 * Says what qelmctorRobustTagged() would do, without building the system.
 *
 * @param[in]  vertexCount    n.
 * @param[in]  vertices       double[3n], packed xyz, any values.
 * @param[in]  triangleCount  m.
 * @param[in]  triangles      int[3m], any values.
 * @param[in]  tags           int[n], any values; 1, 2 and 3 mean "prescribed".
 * @param[out] reportOut      May be null; receives what was done. All 0 unless the
 *                            result is 0 or 106.
 * @return What the constructor's status would be, or 101.
 *
 * Status:    1 vertexCount < 1; 24 triangleCount < 1; 25 a null array; 101 an index
 *            out of range; 23 a triangle repeats a vertex; 24 a vertex lies in no
 *            triangle; 102 a coordinate not finite; 106 endless flips. Checked in this
 *            order, the first one wins.
 * Ownership: the caller owns everything; no pointer is kept.
 * Threads:   may run at the same time as any other call.
 * Memory:    that of the construction up to the factorisation. Exhaustion leaves as
 *            std::bad_alloc, with reportOut unwritten.
 * Since:     1.0.0
 */
QELM_API int qelmcheckRobustTagged(int vertexCount, const double* vertices, int triangleCount,
                                   const int* triangles, const int* tags,
                                   QelmRobustReport* reportOut);

/** What construction within a limit says besides. */
enum {
  /** The system would take more bytes than it may, or its factor has more entries than
      the 2^31 - 1 that can be indexed. */
  QELM_STATUS_TOO_LARGE = 107
};

/** What constructing a mesh system takes. */
typedef struct QelmPrediction {
  int64_t factorEntries;  /**< of the factor L, below its diagonal */
  int64_t handleBytes;    /**< what the handle keeps */
  int64_t peakBytes;      /**< the most that is allocated at once while it is constructed,
                               the handle included */
  double multiplications; /**< of the factorisation; most of the time is theirs */
} QelmPrediction;

/**
 * Says what qelmctorTagged() or qelmctorRobustTagged() would take: constructs as they do,
 * up to where nothing has been allocated yet that grows faster than the mesh. On a
 * surface the factor has some 20 to 100 entries for each vertex; where triangles join
 * vertices at random it can have thousands, and take hours.
 *
 * factorEntries and multiplications are those of the factorisation that would be made,
 * exactly. The bytes are those that are asked of the heap, to 1 % from 20 thousand
 * vertices on, to some percent on smaller meshes. With robust set, what is held before
 * the factorisation may be more, see there.
 *
 * @param[in]  vertexCount    n.
 * @param[in]  vertices       double[3n], packed xyz, any values.
 * @param[in]  triangleCount  m.
 * @param[in]  triangles      int[3m], any values.
 * @param[in]  tags           int[n], any values; 1, 2 and 3 mean "prescribed".
 * @param[in]  robust         0 for qelmctorTagged(), else for qelmctorRobustTagged().
 * @param[out] predictionOut  May be null; receives the figures, all 0 unless the result is 0.
 * @return What the constructor's status would be, or 101.
 *
 * Status:    1 vertexCount < 1; 24 triangleCount < 1; 25 a null array; 101 an index
 *            out of range; 23 a triangle repeats a vertex; 24 a vertex lies in no
 *            triangle; with robust set, 102 a coordinate not finite; 106 endless flips.
 *            Checked in this order, the first one wins.
 * Ownership: the caller owns everything; no pointer is kept.
 * Threads:   may run at the same time as any other call.
 * Memory:    some 330 bytes for each vertex of a surface, a quarter to two thirds of what
 *            construction takes, and 0.08 to 0.4 of its time: less, the larger the mesh.
 *            Exhaustion leaves as std::bad_alloc, with predictionOut unwritten.
 * Since:     1.0.0
 */
QELM_API int qelmpredictTagged(int vertexCount, const double* vertices, int triangleCount,
                               const int* triangles, const int* tags, int robust,
                               QelmPrediction* predictionOut);

/**
 * Builds a mesh system as qelmctorTagged() or qelmctorRobustTagged() does, unless it
 * would take too much memory: then it ends where that is known, before anything large is
 * allocated. Costs nothing over them. For callers into whom no std::bad_alloc may be
 * thrown, and for those who would rather be told than wait.
 *
 * @param[in]  vertexCount     As there, and so on to tags.
 * @param[in]  vertices        As there.
 * @param[in]  triangleCount   As there.
 * @param[in]  triangles       As there.
 * @param[in]  tags            As there.
 * @param[in]  robust          0 for qelmctorTagged(), else for qelmctorRobustTagged().
 * @param[in]  mostBytes       The most that may be allocated at once, see peakBytes of
 *                             QelmPrediction; what is free on the machine, say.
 * @param[out] predictionOut   May be null; receives what qelmpredictTagged() says.
 * @param[out] taggedCountOut  As there.
 * @param[out] status          As there, and 107.
 * @param[out] handleOut       As there.
 * @return Always 1, on success and on failure alike. Look at status.
 *
 * Status:    as of these two, then 107: peakBytes is above mostBytes, or factorEntries
 *            above 2^31 - 1.
 * Ownership: as of these two.
 * Threads:   may run at the same time as any other call.
 * Memory:    as of these two. With status 107, what qelmpredictTagged() takes.
 * Since:     1.0.0
 */
QELM_API int qelmctorLimitedTagged(int vertexCount, const double* vertices, int triangleCount,
                                   const int* triangles, const int* tags, int robust,
                                   int64_t mostBytes, QelmPrediction* predictionOut,
                                   int* taggedCountOut, int* status, MeshSystem** handleOut);

/**
 * The version of the library that is loaded, which need not be that of this header.
 *
 * @return "MAJOR.MINOR.PATCH", zero-terminated ASCII, never null.
 *
 * Errors:    none.
 * Ownership: the library's; valid while it is loaded.
 * Threads:   may run at the same time as any other call.
 * Memory:    allocates nothing.
 * Since:     1.0.0
 */
QELM_API const char* qelmversion(void);

/**
 * Says in English what a code means that a status out-parameter, qelmWeld(),
 * qelmcheckTagged(), qelmcheckRobustTagged(), qelmpredictTagged() or encode_integer_to_sphere()
 * gave. Not for the results of qelminfo() and doPoshModal(), whose numbers mean other things.
 *
 * @param[in] status  Any number.
 * @return One line of ASCII without a full stop, zero-terminated, never null; for a
 *         number that is no status, "unknown status code".
 *
 * Errors:    none.
 * Ownership: the library's; valid while it is loaded.
 * Threads:   may run at the same time as any other call.
 * Memory:    allocates nothing.
 * Since:     1.0.0
 */
QELM_API const char* qelmstatustext(int status);

#ifdef __cplusplus
}
#endif

#endif /* QELM_H */

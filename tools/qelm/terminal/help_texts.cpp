#include "terminal/help_texts.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <vector>

#include "text/error.h"

namespace qelm::tool {
namespace {

constexpr auto kTopics = std::to_array<HelpTopic>({
    {"conditions", "what --fix and --fix-file hold, and at which values",
     "  --fix SELECTOR=VALUE[:TAG] holds the selected vertices at VALUE; 'qelm help selectors'\n"
     "  has the selectors, 'qelm info MESH' what they can name in a mesh. VALUE is one of\n"
     "    a number                0.5\n"
     "    an expression           in x, y, z and s, such as 'sin(2*pi*s)' or '10*(z>1)': the\n"
     "                            value at the vertex's place; s is the way along a loop: or\n"
     "                            curve:, from 0 to 1. + - * / ^, comparisons (1 or 0), pi, e\n"
     "                            and the functions\n"
     "                              abs, acos, asin, atan, cbrt, ceil, cos, cosh, exp,\n"
     "                              floor, log, log10, round, sign, sin, sinh, sqrt, tan,\n"
     "                              tanh, atan2(a, b), hypot(a, b), max(a, b), min(a, b),\n"
     "                              mod(a, b), pow(a, b), if(condition, then, else)\n"
     "    *                       with property:NAME, the property's own values\n"
     "  Vertices, triangles, faces, loops and parts are numbered from 0 (files in which the\n"
     "  first vertex is 1, such as OBJ, too). TAG is the mark 1, 2 or 3 that the vertices\n"
     "  get in the library, 1 unless given; all three hold. The conditions of --fix-file\n"
     "  come first, then every --fix in order. Where several select the same vertex,\n"
     "  the last one holds, and a note says so. At least one vertex of every connected\n"
     "  part must be fixed.\n"
     "\n"
     "  --fix SELECTOR=VALUE,VALUE,... gives one value for each field, a single VALUE is for\n"
     "  all. They are solved together, in much less time than one after another. 'solve'\n"
     "  writes columns value1, value2 and so on; 'curves' and 'view' take several as well.\n"
     "\n"
     "  --fix-file FILE.csv has one of these forms:\n"
     "    VERTEX,VALUE        on each line\n"
     "    VERTEX,VALUE,TAG    on each line\n"
     "    a header line       with the columns vertex and value, and tag if wanted, among\n"
     "                        others, as in the files that solve -o writes\n"
     "  Empty lines and what follows a # are left out, but the last comment may be the\n"
     "  header. Commas, semicolons, tabs or blanks separate, as the first line has it; but\n"
     "  between commas, 0,5 is 0.5. The text is UTF-8, or UTF-16 with its mark.\n"},
    {"selectors", "which vertices a condition means",
     "  vertex:I[,I...]         vertices by number; a range is written 10-20\n"
     "  loop:K                  the K-th boundary loop, the longest is loop:0\n"
     "  loop:near:X,Y,Z         the boundary loop nearest to a point\n"
     "  boundary                every vertex of every boundary loop\n"
     "  near:X,Y,Z              the vertex nearest to a point\n"
     "  box:X0,Y0,Z0,X1,Y1,Z1   every vertex in a box, its sides included\n"
     "  sphere:X,Y,Z,R          every vertex in a sphere, its surface included\n"
     "  plane:X,Y,Z,NX,NY,NZ[,T]\n"
     "                          within T of the plane through X,Y,Z across NX,NY,NZ\n"
     "  above:X,Y,Z,NX,NY,NZ    on that plane and on the side to which NX,NY,NZ points\n"
     "  below:X,Y,Z,NX,NY,NZ    on that plane and on the other side\n"
     "  xmin, xmax, ymin, ymax, zmin, zmax\n"
     "                          at this end of the mesh's box\n"
     "  part:K                  the K-th connected part, by its lowest vertex\n"
     "  part:near:X,Y,Z         the part of the vertex nearest to a point\n"
     "  group:NAME              the faces of an OBJ file's group (g) or object (o)\n"
     "  material:NAME           the faces of an OBJ file's material (usemtl)\n"
     "  property:NAME           where a vertex property of a PLY, VTK or glTF file is not 0;\n"
     "                          with the value *, where it is a number\n"
     "  feature:ANGLE           edges whose triangles bend by more than ANGLE degrees\n"
     "  curve:FILE              along the polylines of an .obj, or of CSV points X,Y,Z: the\n"
     "                          nearest vertices, joined along edges\n"
     "  Planes and ends have a tolerance of a millionth of the box's diagonal unless T says\n"
     "  otherwise; the summary prints it.\n"
     "\n"
     "  A & B is where both select, A | B where one does, !A where A does not; ! binds first,\n"
     "  then &, then |, and brackets group. A name with & | ( ) or = in it stands in double\n"
     "  quotes. The shell needs quotes round all of it:\n"
     "    sh, PowerShell   --fix 'loop:0 & !xmin=0'    --fix 'group:\"a & b\"=1'\n"
     "    cmd.exe          --fix \"loop:0 & !xmin=0\"\n"},
    {"loads", "what --load adds",
     "  --load FILE.csv adds a load g, so that K u + g = 0 at every free vertex, with K\n"
     "  the surface's stiffness matrix (rows sum to 0, positive diagonal): a positive load\n"
     "  lowers the field. Values enter as they are, one per vertex, without any area\n"
     "  factor; those at fixed vertices are not used. The file has one of these forms:\n"
     "    VALUE               on each line, one line per vertex, in order\n"
     "    VERTEX,VALUE        on each line; vertices that are not named have load 0\n"
     "    a header line       with the columns vertex and value among others\n"
     "  Lines as in 'qelm help conditions'.\n"
     "\n"
     "  --load uniform=Q is a load of Q per area: each triangle's, in thirds at its corners.\n"
     "  The summary prints the total. (A file of such a name is ./uniform=Q.)\n"},
    {"fields", "what --field takes",
     "  --field FILE[:COLUMN] cuts and colours any number per vertex, in place of a solve:\n"
     "    .csv, or another name   a value on each line, in the mesh's order; with a header\n"
     "                            line the column COLUMN (value unless given), in any order\n"
     "                            where there is a column vertex. Without a header line,\n"
     "                            COLUMN is a number from 0\n"
     "    .npy                    a numpy array with a row per vertex; COLUMN as a number\n"
     "    .ply, .vtk, .vtp, .vtu, .gltf, .glb\n"
     "                            the vertex property COLUMN (value unless given, or the only\n"
     "                            one); of several components NAME.0, NAME.1 and so on\n"
     "  'curves' and 'view' take several --field: all are in each result, in a drawing with\n"
     "  lines of their own, and on the page there is a choice of them.\n"
     "  --fix-file and --load take .npy, too: a value per vertex, nan where none is held.\n"
     "  For all three, - is the standard input: CSV or a numpy array.\n"},
    {"gradients", "what gradient writes, and solve --gradient",
     "  The gradient says in which direction along the surface a field grows most, and its\n"
     "  length, the slope, by how much on a unit of length. The field is linear on each\n"
     "  triangle, so there is one gradient for each triangle, in the triangle's plane; that of\n"
     "  a vertex is the mean over its triangles, by their areas. A triangle without area has\n"
     "  none (empty in CSV, else nan), and a note counts them.\n"
     "    --per triangle   .csv: triangle,x,y,z,gx,gy,gz,slope with the triangle's centre;\n"
     "                     .npy: (m, 3). That is so unless --per is given\n"
     "    --per vertex     .csv: vertex,x,y,z,value,gx,gy,gz,slope, as 'solve --gradient'\n"
     "                     writes; .npy: (n, 3)\n"
     "  A .ply has gx, gy, gz and slope as properties of its faces or vertices; .vtp and .vtu\n"
     "  have gradient and slope as cell data and as point data. 'solve --gradient' writes the\n"
     "  vertices' columns, also as .npy: value, gx, gy, gz, slope; of several fields all\n"
     "  values come first, then gx1 and so on; as .vtp and .vtu what 'gradient' writes.\n"
     "  --field FILE.csv:slope cuts or colours the slope.\n"},
    {"robust", "bad triangles",
     "  --robust takes the weights from a better triangulation of the same surface between\n"
     "  the same vertices. Slivers, triangles without area and edges of three triangles do no\n"
     "  harm then, and without a load the field stays between the fixed values of each part.\n"
     "  --robust auto does so only where a weight of the plain matrix is negative or not\n"
     "  finite, or an angle below 1.8 degrees, and says which it was. 'qelm check' says\n"
     "  beforehand. With 'qelm solve', --compare-plain says how far the plain field is off.\n"},
    {"levels", "where curves are cut",
     "  --levels N    N levels, evenly between the field's smallest and largest value and\n"
     "                strictly inside: min + k (max - min) / (N + 1), k = 1 to N\n"
     "  --levels N --round\n"
     "                all multiples of 1, 2 or 5 times a power of ten strictly inside, with\n"
     "                the step that gives nearest to N of them\n"
     "  --at V,V,...  these levels\n"
     "  --every STEP  all multiples of STEP strictly inside\n"
     "  --spacing L   from the smallest value upwards, so that the area between neighbouring\n"
     "                curves, divided by the mean of their lengths, is L: curves about L\n"
     "                apart along the surface. The summary says the smallest and the largest\n"
     "                distance met\n"
     "  --through near:X,Y,Z\n"
     "                the value at the place on the surface nearest to a point; may be given\n"
     "                often, and with any of the others\n"
     "  Without any of them there are about ten round levels.\n"
     "  --simplify T leaves out points of curves that are less than T from what stays; no\n"
     "  curve comes to cross or touch another one or itself, and closed ones stay closed.\n"
     "  A value at or above a level counts as above it. Higher values lie at the left of a\n"
     "  curve, seen from where triangles are counter-clockwise.\n"},
    {"files", "what is read and what is written",
     "  Meshes are read from .obj, .off, .ply, .stl, .vtk, .vtp, .vtu, .gltf, .glb, .3mf and\n"
     "  .msh files, text or binary. - is the standard input; --read-as obj and so on says what\n"
     "  it holds. -o - is the standard output; --format ply and so on says what it gets.\n"
     "  Every facet of an STL file has corners of its own. They are welded before anything\n"
     "  else, within a millionth of the mesh's diagonal; a note says so, and vertex numbers\n"
     "  are those after welding. No command writes over a file that it reads.\n"
     "\n"
     "  Polygons are split into triangles, concave ones as well. Faces lose corners that they\n"
     "  repeat; those without three different corners are left out. A vertex in no triangle\n"
     "  keeps its number and gets no value: an empty field in CSV. Notes say so; --strict\n"
     "  refuses all of that but convex polygons.\n"
     "\n"
     "  solve    .csv: the header line vertex,x,y,z,value, then for each vertex its number,\n"
     "           place and value, with the shortest digits that read back as the same doubles\n"
     "           With a name that ends in .npy: a numpy array, (n,), or (n, c) of c fields;\n"
     "           in .vtp or .vtu: the mesh with its field, for VTK\n"
     "  gradient .csv, .npy, .ply, .vtp and .vtu, see 'qelm help gradients'\n"
     "  heatmap  PATH.obj and PATH.mtl and, beside them, viridis.PNG: the largest value is\n"
     "           yellow, the smallest dark blue. Another --ramp makes magma.PNG or so,\n"
     "           or PATH-ramp.PNG. Files of those names are replaced. Vertices come in the\n"
     "           library's order (fixed ones first), not in the mesh's.\n"
     "           With a PATH that ends in .ply instead: one binary PLY file in the mesh's\n"
     "           order, with the value (double) and the colour (red, green, blue) of every\n"
     "           vertex; .vtp and .vtu: the same for VTK, with the value alone; .glb, .gltf:\n"
     "           the mesh in single precision with the colours as its texture\n"
     "  curves   by the extension of OUT, and -o may be given often; --format says so for a\n"
     "           name that ends otherwise:\n"
     "           .obj   polylines (l), closed ones closed, a group level_V for each level\n"
     "           .json  levels, and for each curve its level by number and value, whether it\n"
     "                  is closed, and its points\n"
     "           .csv   curve,level,value,closed,x,y,z for each point; also what -o - writes\n"
     "           .svg   a picture with a scale, see 'qelm help pictures'\n"
     "           .dxf   3D polylines of release 12, a layer and a text for each level\n"
     "           .vtp   lines for VTK, each with its level\n"
     "           .glb, .gltf\n"
     "                  lines in single precision, a node for each level\n"
     "  view     .html, see 'qelm help pictures'\n"
     "  weld, repair\n"
     "           .obj, .off, .ply, .vtp and .vtu keep every double; .stl and, with --format\n"
     "           off-binary, .off have single precision; - is OBJ unless --format is given\n"},
    {"colours", "titles, units and colours of heat maps, drawings and pages",
     "  --title TEXT is the heading, in place of the mesh file's name; --unit TEXT is written\n"
     "  behind values. In heat maps both are comments; in glTF the name of the node and the\n"
     "  unit among its extras.\n"
     "\n"
     "  --ramp says which colours values have. viridis, unless given, magma and cividis grow\n"
     "  evenly lighter; cividis looks alike to colour-blind eyes; turbo has more colours to\n"
     "  tell apart; coolwarm is for fields with a middle. FILE.png is read along its middle,\n"
     "  from the colour of the largest value at the left, as in the images beside heat maps,\n"
     "  or at the top of an image that is higher than wide. reversed:RAMP turns one round.\n"
     "\n"
     "  --range LOW,HIGH are the values at the ends of the colours, in place of the field's\n"
     "  own smallest and largest, so that two pictures can be compared. Values outside have\n"
     "  the end's colour; a note says that there are any.\n"},
    {"pictures", "--view, --up, drawings to scale, and what is on a page",
     "  --view says from where an .svg, or at first a page, looks at the mesh: along\n"
     "  an axis (x, -x, y, -y, z, -z), along X,Y,Z towards the viewer, or across the\n"
     "  best-fitting plane (best; a page chooses for itself). In an .svg what the mesh\n"
     "  hides is drawn faintly.\n"
     "\n"
     "  --up says which axis points up. auto is z, but y for glTF, and for OBJ files\n"
     "  the axis that the mesh stands on most firmly; roofs and terrains keep z. The\n"
     "  front is at -y with z up, at z with y up.\n"
     "\n"
     "  --scale 1:50 (or 2:1) draws an .svg to scale, in millimetres of paper, with a bar of\n"
     "  lengths; --mesh-unit mm, cm, m, in or ft is what the mesh is measured in, and --unit,\n"
     "  if it is one of these, serves for both. --paper A3 (A0 to A4, letter, tabloid, or\n"
     "  WIDTH,HEIGHT in mm) is the page: without it the smallest of A4 to A0 that has room,\n"
     "  and without --scale the largest round scale for which the page has.\n"
     "\n"
     "  The page that 'qelm view' writes is one HTML file that needs nothing else, not\n"
     "  even a network: the mesh with its heat map and level curves, a scale, and the\n"
     "  value under the pointer. Drag to turn, drag with the right button to move,\n"
     "  scroll to zoom; 'Keys' on the page lists what the keyboard does. It begins\n"
     "  with the levels of the command line; their number can be changed on the page.\n"
     "  Click or tap a curve for its level and length; the address keeps what is\n"
     "  shown. Above 100,000 vertices the page has positions to 24 bits; values are\n"
     "  always exact. --page TEMPLATE.html fills in another page, such as the live one.\n"},
    {"facts", "what info says",
     "  On the standard output: counts, bounding box, area, lengths of edges, connected parts,\n"
     "  and the boundary loops by the numbers that loop:K takes. --json has every part and\n"
     "  every loop. 'qelm check' says whether the mesh can be solved on.\n"},
    {"checks", "what check says, and its exit code",
     "  The report says on the standard output what the mesh is like, and ends in a verdict,\n"
     "  the same that a solve comes to:\n"
     "    fine\n"
     "    will work, but with an error of about so much of the largest value; measured with\n"
     "      a field that should be 1 everywhere\n"
     "    will not work, and why; then the exit code is the solve's, 4 or 5\n"
     "  With --fix every connected part needs a fixed vertex; without, one counts as fixed.\n"
     "  -q leaves only the exit code.\n"},
    {"welding", "which vertices weld merges",
     "  Vertices closer together than the tolerance become one, at the place of the one\n"
     "  that comes first; chains of close vertices merge as a whole. Triangles that\n"
     "  collapse or repeat an earlier one are dropped, then vertices that no triangle uses.\n"
     "  Every corner of an STL facet counts as a vertex. --tolerance is a millionth of the\n"
     "  mesh's diagonal unless given; 0 merges nothing.\n"},
    {"mending", "what repair does, and in which order",
     "  In this order: vertices closer together than the tolerance become one, as 'weld' has\n"
     "  it. Triangles lower than the tolerance go without leaving a hole: of a needle the\n"
     "  short side collapses; where a corner lies on the opposite side, the neighbour at that\n"
     "  side is split there. Vertices on a boundary side that passes them are set into it\n"
     "  (T-joints). Of triangles with the same corners the first stays; vertices that nothing\n"
     "  uses are dropped. Neighbours are oriented alike where that is possible. The summary\n"
     "  counts each, and a note says what the result is not good for. --tolerance is a\n"
     "  millionth of the mesh's diagonal unless given; no vertex moves by much more.\n"},
    {"output", "streams, terminals and exit codes",
     "  Data goes to the standard output, messages go to the standard error stream. A\n"
     "  result's file appears when it is complete, never before. On a terminal, a line\n"
     "  tells which step runs and for how long. NO_COLOR switches colours off.\n"
     "\n"
     "  Exit codes:\n"
     "    0  success\n"
     "    1  the result cannot be written, or the memory is not enough\n"
     "    2  the command line is wrong, or asks for what the mesh has not\n"
     "    3  a file cannot be opened, or is not what its name says\n"
     "    4  a file was read, but holds no mesh that can be used\n"
     "    5  the system is singular: a connected part has no fixed vertex, or triangles\n"
     "       are too thin to compute with\n"},
});

}  // namespace

const char* const kInfoExamples =
    "  qelm info roof.obj\n"
    "  qelm info part.stl --json\n";

const char* const kCheckExamples =
    "  qelm check roof.obj\n"
    "  qelm check roof.obj --fix loop:0=0 --json\n";

const char* const kSolveExamples =
    "  qelm solve roof.obj --fix loop:0=0 --fix loop:1=1 -o field.csv\n"
    "  qelm solve part.stl --fix vertex:0,7=20.5 --fix near:0,0,10=80 -o - -q\n";

const char* const kGradientExamples =
    "  qelm gradient roof.obj --fix loop:0=0 --fix loop:1=1 -o slopes.csv\n"
    "  qelm gradient roof.obj --fix loop:0=0 --fix loop:1=1 -o slopes.ply\n";

const char* const kHeatmapExamples =
    "  qelm heatmap roof.obj --fix loop:0=0 --fix loop:1=1 -o heat\n"
    "  qelm heatmap roof.obj --fix loop:0=0 --fix loop:1=1 -o heat.ply\n";

const char* const kCurvesExamples =
    "  qelm curves roof.obj --fix loop:0=0 --fix loop:1=1 -o curves.svg\n"
    "  qelm curves roof.obj --fix loop:0=0 --fix loop:1=1 --at 0.5 -o half.obj\n";

const char* const kViewExamples =
    "  qelm view roof.obj --fix loop:0=0 --fix loop:1=1 -o roof.html\n"
    "  qelm view part.stl --fix vertex:0=20 --fix near:9,9,0=80 -o part.html\n";

const char* const kWeldExamples =
    "  qelm weld part.stl -o part.obj --tolerance 1e-4\n"
    "  qelm weld part.stl -o part.ply --json\n";

const char* const kRepairExamples =
    "  qelm repair part.stl -o part.obj\n"
    "  qelm repair part.stl -o part.ply --tolerance 1e-3 --json\n";

const char* const kCompletionExamples =
    "  qelm completion bash\n"
    "  qelm completion fish\n"
    "Where it goes:\n"
    "  bash   source <(qelm completion bash), or into bash-completion's folder as qelm\n"
    "  zsh    into a folder of $fpath, as _qelm\n"
    "  fish   into ~/.config/fish/completions, as qelm.fish\n";

const char* const kManualExamples = "  qelm manual\n";

const char* const kHelpExamples =
    "  qelm help\n"
    "  qelm help conditions\n";

std::span<const HelpTopic> helpTopics() { return kTopics; }

std::string topicNames() {
  std::vector<std::string> names;
  for (const HelpTopic& topic : kTopics) names.emplace_back(topic.name);
  return fmt::format("{}", fmt::join(names, "|"));
}

std::string topicList() {
  std::string text = "Topics:\n";
  for (const HelpTopic& topic : kTopics)
    text += fmt::format("  qelm help {:<12}{}\n", topic.name, topic.summary);
  return text;
}

std::string topicText(const std::string& name) {
  for (const HelpTopic& topic : kTopics)
    if (name == topic.name) return fmt::format("{}: {}\n{}", topic.name, topic.summary, topic.text);
  throw UsageError(fmt::format("there is no help on '{}'; name one of: {}", name, topicNames()));
}

std::string footer(const char* examples, const std::string& topics) {
  std::string text = fmt::format("Examples:\n{}", examples);
  if (!topics.empty()) text += fmt::format("\nMore: qelm help {}", topics);
  return text;
}

}  // namespace qelm::tool

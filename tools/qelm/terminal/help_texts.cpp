#include "terminal/help_texts.h"

namespace qelm::tool {

const char* const kTourHelp =
    "Where to begin:\n"
    "  qelm info MESH       shows the boundary loops of a mesh\n"
    "  qelm solve --help    has the grammar of boundary conditions\n"
    "  qelm curves --help   has examples to copy\n"
    "  qelm view --help     says how to look at a field in a browser\n";

const char* const kConditionHelp =
    "Boundary conditions:\n"
    "  --fix SELECTOR=VALUE[:TAG] holds the selected vertices at VALUE. Selectors:\n"
    "    vertex:I[,I...]         vertices by number\n"
    "    loop:K                  the K-th boundary loop, the longest is loop:0\n"
    "    boundary                every vertex of every boundary loop\n"
    "    near:X,Y,Z              the vertex nearest to a point\n"
    "    box:X0,Y0,Z0,X1,Y1,Z1   every vertex in a box, its sides included\n"
    "  Vertices, triangles, faces and loops are numbered from 0 (files in which the\n"
    "  first vertex is 1, such as OBJ, too). TAG is the mark 1, 2 or 3 that the vertices\n"
    "  get in the library, 1 unless given; all three hold. The conditions of --fix-file\n"
    "  come first, then every --fix in order. Where several select the same vertex,\n"
    "  the last one holds, and a note says so. At least one vertex of every connected\n"
    "  part must be fixed.\n";

const char* const kFixFileHelp =
    "Conditions from a file:\n"
    "  --fix-file FILE.csv has one of these forms:\n"
    "    VERTEX,VALUE        on each line\n"
    "    VERTEX,VALUE,TAG    on each line\n"
    "    a header line       with the columns vertex and value, and tag if wanted, among\n"
    "                        others, as in the files that solve -o writes\n"
    "  Empty lines and what follows a # are left out.\n";

const char* const kLoadHelp =
    "Loads:\n"
    "  --load FILE.csv adds a load g, so that K u + g = 0 at every free vertex, with K\n"
    "  the surface's stiffness matrix (rows sum to 0, positive diagonal): a positive load\n"
    "  lowers the field. Values enter as they are, one per vertex, without any area\n"
    "  factor; those at fixed vertices are not used. The file has one of these forms:\n"
    "    VALUE               on each line, one line per vertex, in order\n"
    "    VERTEX,VALUE        on each line; vertices that are not named have load 0\n"
    "    a header line       with the columns vertex and value among others\n"
    "  Empty lines and what follows a # are left out.\n";

const char* const kSoupHelp =
    "STL files:\n"
    "  Every facet of an STL file has corners of its own. They are welded before anything\n"
    "  else, within a millionth of the mesh's diagonal; a note says so, and vertex numbers\n"
    "  are those after welding.\n";

const char* const kStreamsHelp =
    "Output:\n"
    "  Data goes to the standard output, messages go to the standard error stream. A\n"
    "  result's file appears when it is complete, never before. On a terminal, a line\n"
    "  tells which step runs and for how long. NO_COLOR switches colours off.\n";

const char* const kExitHelp =
    "Exit codes:\n"
    "  0  success\n"
    "  1  the result cannot be written, or the memory is not enough\n"
    "  2  the command line is wrong, or asks for what the mesh has not\n"
    "  3  a file cannot be opened, or is not what its name says\n"
    "  4  a file was read, but holds no mesh that can be used\n"
    "  5  the system is singular: a connected part has no fixed vertex, or triangles\n"
    "     are too thin to compute with\n";

const char* const kSolveHelp =
    "The field:\n"
    "  -o writes the header line vertex,x,y,z,value, then for each vertex its number, place\n"
    "  and value, with the shortest digits that read back as the same doubles.\n";

const char* const kSeveralHelp =
    "Several fields at once:\n"
    "  --fix SELECTOR=VALUE,VALUE,... gives one value for each field, a single VALUE is for\n"
    "  all. They are solved together, in much less time than one after another, and\n"
    "  written to columns value1, value2 and so on.\n";

const char* const kInfoHelp =
    "The facts:\n"
    "  On the standard output: counts, bounding box, area, lengths of edges, connected parts,\n"
    "  and the boundary loops by the numbers that loop:K takes. --json has every part and\n"
    "  every loop. 'qelm check' says whether the mesh can be solved on.\n";

const char* const kCheckHelp =
    "The report:\n"
    "  Says on the standard output what would keep the mesh from being solved on; -q leaves\n"
    "  only the exit code: 0 when there is no defect, 4 when there is one, 5 when parts\n"
    "  are not fixed. That is looked at when there is a --fix: every connected part needs\n"
    "  a fixed vertex.\n";

const char* const kHeatmapHelp =
    "What is written:\n"
    "  PATH.obj and PATH.mtl and, beside them, viridis.PNG: the largest value is yellow,\n"
    "  the smallest dark blue. Files of those names are replaced. Vertices come in the\n"
    "  library's order (fixed ones first), not in the mesh's.\n"
    "  With a PATH that ends in .ply instead: one binary PLY file in the mesh's order, with\n"
    "  the value (double) and the colour (red, green, blue) of every vertex.\n";

const char* const kCurvesHelp =
    "Levels and formats:\n"
    "  --levels N    N levels, evenly between the field's smallest and largest value and\n"
    "                strictly inside: min + k (max - min) / (N + 1), k = 1 to N\n"
    "  --at V,V,...  these levels\n"
    "  --every STEP  all multiples of STEP strictly between smallest and largest value\n"
    "  A value at or above a level counts as above it. Higher values lie at the left of a\n"
    "  curve, seen from where triangles are counter-clockwise.\n"
    "  The extension of OUT chooses the format, and -o may be given often:\n"
    "    .obj   polylines (l), closed ones closed, a group level_V for each level\n"
    "    .json  levels, and for each curve its level by number and value, whether it\n"
    "           is closed, and its points\n"
    "    .csv   curve,level,value,closed,x,y,z for each point; also what -o - writes\n"
    "    .svg   a picture with a scale\n"
    "  --format says so for a name that ends otherwise.\n";

const char* const kPictureHelp =
    "Pictures:\n"
    "  --view says from where an .svg looks at the mesh: along an axis (x, -x, y, -y, z,\n"
    "  -z), along X,Y,Z towards the viewer, or across the best-fitting plane (best). What\n"
    "  the mesh hides is drawn faintly.\n"
    "  --up says which axis points up. auto is z, but y for glTF, and for OBJ files the axis\n"
    "  that the mesh stands on most firmly; roofs and terrains keep z. The front is at -y\n"
    "  with z up, at z with y up. 'qelm view' takes the same.\n";

const char* const kViewHelp =
    "The page:\n"
    "  One HTML file that needs nothing else, not even a network: the mesh with its heat\n"
    "  map and level curves, a scale, and the value under the pointer. Drag to turn, drag\n"
    "  with the right button to move, scroll to zoom; 'Keys' on the page lists what the\n"
    "  keyboard does. It begins with the levels of --levels (12 unless given), --at or\n"
    "  --every, as 'qelm curves' has them; their number can be changed on the page.\n"
    "  Click or tap a curve for its level and length; the address keeps what is shown.\n"
    "  --up says which axis points up: auto is z, but y for glTF, and for OBJ files the axis\n"
    "  that the mesh stands on most firmly; roofs and terrains keep z. --view says from where\n"
    "  the page looks at first; best leaves that to the page. Above 100,000 vertices the\n"
    "  page has positions to 24 bits; values are always exact.\n";

const char* const kWeldHelp =
    "Welding:\n"
    "  Vertices closer together than the tolerance become one, at the place of the one\n"
    "  that comes first; chains of close vertices merge as a whole. Triangles that\n"
    "  collapse or repeat an earlier one are dropped, then vertices that no triangle uses.\n"
    "  Every corner of an STL facet counts as a vertex. --tolerance is a millionth of the\n"
    "  mesh's diagonal unless given; 0 merges nothing.\n"
    "  The extension of OUT chooses the format: .obj and .ply keep every double, .stl is\n"
    "  rounded to single precision; - is OBJ on the standard output.\n";

const char* const kInfoExamples =
    "Examples:\n"
    "  qelm info roof.obj\n"
    "  qelm info part.stl --json\n";

const char* const kCheckExamples =
    "Examples:\n"
    "  qelm check roof.obj\n"
    "  qelm check roof.obj --fix loop:0=0 --json\n";

const char* const kSolveExamples =
    "Examples:\n"
    "  qelm solve roof.obj --fix loop:0=0 --fix loop:1=1 -o field.csv\n"
    "  qelm solve part.stl --fix vertex:0,7=20.5 --fix near:0,0,10=80 -o - -q\n"
    "  qelm solve roof.obj --fix box:-9,-9,0,9,9,0=0:2 --fix loop:1=3 --json -o field.csv\n"
    "  qelm solve roof.obj --fix-file fixed.csv --load snow.csv -o field.csv\n"
    "  qelm solve roof.obj --fix loop:0=0,1 --fix loop:1=1,0 -o fields.csv\n"
    "  qelm solve roof.obj --fix boundary=0 --load snow.csv\n";

const char* const kHeatmapExamples =
    "Examples:\n"
    "  qelm heatmap roof.obj --fix loop:0=0 --fix loop:1=1 -o heat\n"
    "  qelm heatmap roof.obj --fix loop:0=0 --fix loop:1=1 -o heat.ply\n";

const char* const kCurvesExamples =
    "Examples:\n"
    "  qelm curves roof.obj --fix loop:0=0 --fix loop:1=1 --levels 9 -o curves.obj\n"
    "  qelm curves roof.obj --fix loop:0=0 --fix loop:1=1 --at 0.25,0.5 -o curves.json\n"
    "  qelm curves roof.obj --fix loop:0=0 --fix loop:1=5 --every 0.5 --view 1,-1,1 "
    "-o curves.svg\n"
    "  qelm curves roof.obj --fix loop:0=0 --fix loop:1=1 --levels 9 -o curves.csv -o "
    "curves.svg -q\n";

const char* const kViewExamples =
    "Examples:\n"
    "  qelm view roof.obj --fix loop:0=0 --fix loop:1=1 --levels 12 -o roof.html\n"
    "  qelm view part.stl --fix vertex:0=20 --fix near:9,9,0=80 --every 10 -o part.html\n";

const char* const kWeldExamples =
    "Examples:\n"
    "  qelm weld part.stl -o part.obj --tolerance 1e-4\n"
    "  qelm weld part.stl -o part.ply --json\n";

const char* const kCompletionExamples =
    "Examples:\n"
    "  qelm completion bash\n"
    "  qelm completion fish\n";

const char* const kCompletionHelp =
    "Where it goes:\n"
    "  bash   source <(qelm completion bash), or into bash-completion's folder as qelm\n"
    "  zsh    into a folder of $fpath, as _qelm\n"
    "  fish   into ~/.config/fish/completions, as qelm.fish\n";

const char* const kManualExamples =
    "Examples:\n"
    "  qelm manual\n";

std::string sections(std::initializer_list<const char*> texts) {
  std::string all;
  for (const char* text : texts) {
    if (!all.empty()) all += '\n';
    all += text;
  }
  return all;
}

}  // namespace qelm::tool

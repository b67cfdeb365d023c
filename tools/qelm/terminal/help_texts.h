// What --help says below the options, in sections: a title on a line of its own,
// ending in a colon, and indented lines. The manual page is made of the same ones.
#ifndef QELM_TOOLS_HELP_TEXTS_H
#define QELM_TOOLS_HELP_TEXTS_H

#include <initializer_list>
#include <string>

namespace qelm::tool {

extern const char* const kTourHelp;
extern const char* const kConditionHelp;
extern const char* const kFixFileHelp;
extern const char* const kLoadHelp;
extern const char* const kRobustHelp;
extern const char* const kSoupHelp;
extern const char* const kStreamsHelp;
extern const char* const kExitHelp;

extern const char* const kInfoHelp;
extern const char* const kCheckHelp;
extern const char* const kSolveHelp;
extern const char* const kSeveralHelp;
extern const char* const kHeatmapHelp;
extern const char* const kCurvesHelp;
extern const char* const kPictureHelp;
extern const char* const kViewHelp;
extern const char* const kWeldHelp;
extern const char* const kCompletionHelp;

/// Every line that begins with "  qelm " is run by a test.
extern const char* const kInfoExamples;
extern const char* const kCheckExamples;
extern const char* const kSolveExamples;
extern const char* const kHeatmapExamples;
extern const char* const kCurvesExamples;
extern const char* const kViewExamples;
extern const char* const kWeldExamples;
extern const char* const kCompletionExamples;
extern const char* const kManualExamples;

/// The sections with an empty line between each two.
std::string sections(std::initializer_list<const char*> texts);

}  // namespace qelm::tool

#endif

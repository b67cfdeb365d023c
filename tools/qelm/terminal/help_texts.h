// The help apart from the options: two examples for each command, and topics ('qelm help TOPIC')
// for all else. Nothing is said twice. The manual page is made from the same texts.
#ifndef QELM_TOOLS_HELP_TEXTS_H
#define QELM_TOOLS_HELP_TEXTS_H

#include <span>
#include <string>

namespace qelm::tool {

/// Two lines each. Every line that begins with "  qelm " is run by a test.
extern const char* const kInfoExamples;
extern const char* const kCheckExamples;
extern const char* const kSolveExamples;
extern const char* const kGradientExamples;
extern const char* const kHeatmapExamples;
extern const char* const kCurvesExamples;
extern const char* const kViewExamples;
extern const char* const kWeldExamples;
extern const char* const kRepairExamples;
extern const char* const kCompletionExamples;
extern const char* const kManualExamples;
extern const char* const kHelpExamples;

struct HelpTopic {
  const char* name;     ///< "conditions"
  const char* summary;  ///< half a line
  const char* text;     ///< lines that begin with two blanks
};

/// In the order in which a newcomer needs them.
std::span<const HelpTopic> helpTopics();

/// "conditions|levels|...".
std::string topicNames();

/// What `qelm help` prints: all topics, or one. Throws UsageError that lists them.
std::string topicList();
std::string topicText(const std::string& name);

/// The end of a command's --help: its examples, and which topics say more.
std::string footer(const char* examples, const std::string& topics);

}  // namespace qelm::tool

#endif

// Record selection by category: a list of conditions on what the records
// themselves hold (description, date, day range, detail level, zone, time,
// place, latitude, longitude and the user's categories), joined by And, Or
// and Xor with Not and brackets exactly as the criteria search joins its
// tests (research/criteria.h), and the run that flags each enabled record.
//
// Dates compare as Year * 10000 + Month * 100 + Day, times of day as
// Hour * 10000 + Minute * 100 + Second, zones in hours, latitudes north and
// longitudes west positive in degrees; zones, latitudes and longitudes
// agree to the whole second. Values typed for those fields go through the
// value parsers and back through the formatters. Checked by tables of
// conditions on each field and category type in
// tests/research/selection_test.cpp.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/session.h"

namespace vintar {

inline constexpr int kSelRecordFields = 10;  // fields 0..9; 10 and above are categories
inline constexpr int kSelValueChars = 80;

struct SelCriterion {
  int16_t Field = 0;      // 0..9 record fields, 10 + k - 1 category k
  int32_t Condition = 0;  // ComparisonName index 0..8
  std::string Value;      // trimmed, at most 80 characters
  int16_t Negated = 0;
  int32_t Connective = 0;  // 0 And, 1 Or, 2 Xor
  int16_t NestLevel = 0;
};

// SelCriteria[1..Count()] (slot 0 unused).
struct SelectionList {
  std::vector<SelCriterion> Items = std::vector<SelCriterion>(1);
  int Count() const { return static_cast<int>(Items.size()) - 1; }
};

// The entries of cmbField: the first ten record field names, then the
// project's category names.
std::vector<std::string> SelFieldNames(const Session& session);
// Leaving cmbValue: dates, times, zones, latitudes and longitudes parsed
// silently and formatted again; a value that fails takes its default.
std::string NormaliseSelValue(Session& session, int field, const std::string& text);

// The screen's buttons. Add appends a new condition (And, not negated,
// level 0); the connective applies to every highlighted condition but the
// list's first; Not toggles each highlighted one; Delete removes them.
void AddSelCriterion(SelectionList& list, int field, int condition, const std::string& value);
void SetSelConnective(SelectionList& list, const std::vector<int>& selected, int connective);
void ToggleSelNegated(SelectionList& list, const std::vector<int>& selected);
void DeleteSelCriteria(SelectionList& list, const std::vector<int>& selected);
// The bracket button over first..last, with the criteria list's rule and messages.
bool ToggleSelBrackets(Session& session, SelectionList& list, int first, int last);

// The list row: connective, brackets, "Not ", field, condition and value.
std::string SelCriterionText(const Session& session, const SelectionList& list, int index);

// The comparison values, parsed once per run.
struct PreparedSelection {
  std::vector<double> Numbers;  // by condition index
};
PreparedSelection PrepareSelection(Session& session, const SelectionList& list);
// One record against conditions first..last, as a 16-bit flag.
int16_t EvaluateSelection(const Session& session, const SelectionList& list, const PreparedSelection& prepared,
                          const EventRecord& record, int first, int last);

struct SelectionRun {
  std::vector<int16_t> PassedFlags;  // 1..RecordCount
  int Enabled = 0;
  int Passed = 0;
  bool Ran = false;  // false with no conditions or when stopped
};
// Flags every enabled record; status "Records Selected: " with the count.
SelectionRun RunSelection(Session& session, const SelectionList& list, Progress* progress = nullptr);
// The "Selection Finished" box text.
std::string SelectionFinishedText(int passed, int enabled);
// Switches off every record whose flag is false (disabled ones stay so).
void ApplySelection(Session& session, const std::vector<int16_t>& passedFlags);
// The run and what follows it: with `resultsScreen` (the main menu's road)
// that screen decides, `applied` true unless it returns false; without it
// the "Selection Finished" box, whose OK applies the selection.
SelectionRun SelectRecords(Session& session, const SelectionList& list, bool& applied,
                           const std::function<bool(SelectionRun&)>& resultsScreen = {},
                           Progress* progress = nullptr);

}  // namespace vintar

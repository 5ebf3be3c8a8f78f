// The criteria search: a list of astrological tests joined by And, Or and
// Xor, with Not and brackets, asked of every enabled chart of a project.
// A test is one tabulation cell set: the same points, data types, division
// codes and classifier as the tabulation engine (research/tabulate.h), read
// from the project's transit position cache (tropical, ephemeris time) with
// each record's chart cast into slot 7.
//
// Flags are 16-bit, -1 true and 0 false, and the connectives work bitwise on
// them. The list is evaluated strictly left to right without precedence; a
// run of records at a deeper bracket level is evaluated first as one term
// and joins what stands before it with the connective of its first record.
// The same bracket evaluator serves the record selection of
// research/selection.h.
//
// Criteria files (.vcr): a point list header and its points as in .vpt
// files, then 784-byte records to the end of the file, every field
// little-endian at its fixed offset. Checked by tables of connectives and
// bracket nestings, file round trips and damaged files, and charts with
// hand-set positions in tests/research/criteria_test.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/progress.h"
#include "core/session.h"
#include "research/points.h"
#include "research/tabulate.h"

namespace vintar {

inline constexpr int kCriterionRecordSize = 784;
inline constexpr int kCriterionCells = 360;

// How a record joins what stands before it.
enum CriterionOperator : int32_t { kAndOperator = 0, kOrOperator = 1, kXorOperator = 2 };

struct CriterionRecord {
  int32_t InexactOption = 0;  // 0 exclude ambiguous points, 1 median time, 2 exclude inexact charts
  int16_t PointCount = 0;     // 0, 1 or 2
  std::array<PointRef, 2> Points{};
  int16_t MinMatches = 1;
  uint8_t DataType = 0;
  int16_t DivisionCode = 0;
  int16_t UserDivisions = 12;
  std::array<int16_t, kCriterionCells> CellSelected{};  // -1 where cell i + 1 is wanted
  int16_t CellCount = 0;
  int16_t SelectedCells = 0;
  float Orb = 0;  // orb, anchor, range or century by division
  int16_t Harmonic = 1;
  uint8_t Scheme = 1;  // 1 Modern, 2 Ancient
  int32_t Reserved = 0;
  int16_t Negate = 0;
  int32_t Operator = kAndOperator;
  int16_t NestLevel = 0;
  bool operator==(const CriterionRecord&) const = default;
};
using Criterion = CriterionRecord;

// The list of the criteria screen: the point list it offers, and the
// records Criteria[1..Count()] (slot 0 unused).
struct CriteriaList {
  PointListHeader Header;
  std::vector<PointRef> Points;
  std::vector<CriterionRecord> Criteria = std::vector<CriterionRecord>(1);
  int Count() const { return static_cast<int>(Criteria.size()) - 1; }
};

// ---------------------------------------------------------------- logic

// And, Or, Xor of two 16-bit flags (op 0, 1, 2); any other op gives false.
int16_t CombineFlags(int16_t left, int16_t right, int op);
inline int16_t NotFlag(int16_t value) { return static_cast<int16_t>(~value); }

// Evaluates terms first..last of a bracketed list: `level(k)` is the
// bracket depth of term k, `op(k)` its connective, `term(k)` its value as
// a 16-bit flag. Strict left to right; a deeper run is one term.
template <class Level, class Op, class Term>
int16_t EvaluateBracketed(int first, int last, const Level& level, const Op& op, const Term& term) {
  if (first >= last) return term(first);
  const int base = level(first);
  int16_t result = EvaluateBracketed(first, first, level, op, term);
  int pending = 0;
  for (int k = first + 1; k <= last; ++k) {
    if (level(k) > base) {
      if (pending == 0) pending = k;
      continue;
    }
    if (pending > 0) {
      result = CombineFlags(result, EvaluateBracketed(pending, k - 1, level, op, term), op(pending));
      pending = 0;
    }
    result = CombineFlags(result, term(k), op(k));
  }
  if (pending > 0) result = CombineFlags(result, EvaluateBracketed(pending, last, level, op, term), op(pending));
  return result;
}

// The bracket button over the run first..last of a list of `count`
// entries whose depths `level(k)` gives (1-based). Refused with "Cannot
// apply" messages when the run's ends stand at different depths that its
// neighbours do not match, or when the run is the whole list. Otherwise the
// run gains a level, or loses one when it already stands bracketed on its
// own. Returns whether anything changed.
bool ToggleBrackets(Session& session, int count, int first, int last, const std::function<int16_t&(int)>& level);
// The same over a highlighted set (selected[1..count]), run by run.
bool ToggleBracketsOnSelection(Session& session, const std::vector<bool>& selected,
                               const std::function<int16_t&(int)>& level);

// ---------------------------------------------------------------- files

std::string EncodeCriteriaFile(const CriteriaList& list);
// Any bytes: false with `error` for a file too short for its header and
// points, or a point of unknown type or transformation; trailing bytes
// short of a record are ignored. A 0-byte criteria section is an empty list.
bool DecodeCriteriaFile(const std::string& bytes, CriteriaList& list, std::string& error);
// Staged write; a failure is shown under "Save Current Criteria".
bool SaveCriteriaFile(Session& session, const std::string& path, const CriteriaList& list);
// Reads a list, then loads the parts and almuten files its header names
// into `state`. Messages under "Open Selection Criteria"; nothing changed
// on failure.
bool OpenCriteriaFile(Session& session, ResearchState& state, const std::string& path, CriteriaList& list);

// ---------------------------------------------------------------- building

// What the screen holds when a criterion is added.
struct NewCriterion {
  int DataType = 0;
  int Code = 0;
  std::vector<PointRef> Selected;  // the highlighted points
  bool PointsAvailable = true;     // the point list has entries
  std::vector<int> Cells;          // highlighted division cells, from 1
  int CellCount = 0;               // entries of the list of divisions
  int UserDivisions = 12;
  double Orb = 0;
  int Harmonic = 0;  // 0: the harmonic box is disabled
  bool ModernRulers = true;
  int InexactOption = 0;
};
// The add button's checks ("Too Many Points", "Cannot Add") and the new
// record at the end of the list. False after a message.
bool AddCriterion(Session& session, CriteriaList& list, const NewCriterion& input);
// The connective buttons: Operator of each selected record (1-based).
void SetCriterionOperator(CriteriaList& list, const std::vector<int>& selected, int op);
// Not: toggles Negate only when exactly one record is selected.
void ToggleCriterionNegate(CriteriaList& list, int first, int last);
// Delete: the list compacted over the selected records, every depth to 0.
void DeleteCriteria(CriteriaList& list, const std::vector<int>& selected);

// ---------------------------------------------------------------- text

// The two halves of a list line: ("Mars", "in Aries") or ("Sun-Moon", "in
// any of 2 selected divisions of Aspects: Angular Separations").
std::pair<std::string, std::string> CriterionText(const Session& session, const ResearchState& state,
                                                  const CriterionRecord& record);
// The lines of lstCriteria: connective word, brackets, "Not (...)".
std::string CriterionLine(const Session& session, const ResearchState& state, const CriteriaList& list, int index);
std::vector<std::string> CriteriaLines(const Session& session, const ResearchState& state, const CriteriaList& list);

// ---------------------------------------------------------------- evaluation

// Evaluates the list for one record's chart at a time; remembers the pass
// cast into slot 7 so that tests of one record share it.
class CriteriaEvaluator {
 public:
  CriteriaEvaluator(Session& session, ResearchState& state, const CriteriaList& list);
  // The record under test and its cache record; forgets the pass cast.
  void BeginRecord(const EventRecord& event, const EventPositionRecord& cached);
  int16_t EvaluateList(int first, int last);
  int16_t EvaluateCriterion(int index);

 private:
  bool Pass(const CriterionRecord& c, int pass);
  bool ValueOf(int dataType, const PointValue& pv, double& v, double& y) const;
  Session& session_;
  ResearchState& state_;
  const CriteriaList& list_;
  const EventRecord* event_ = nullptr;
  const EventPositionRecord* cached_ = nullptr;
  int castPass_ = 0;
  ResearchChart chart_;
  std::vector<PointRef> expanded_, refs_;
  std::vector<int> origin_, extra_;
  std::vector<PointValue> values_;
  std::vector<char> hit_;
};

struct CriteriaRun {
  std::vector<int16_t> PassedFlags;  // 1..RecordCount, -1 for a pass
  int Enabled = 0;
  int Passed = 0;
  bool Failed = false;
  bool Cancelled = false;
};

// "You have not specified any criteria to search for." when empty.
bool CheckCriteriaList(Session& session, const CriteriaList& list);
// The search over the open project: the transit cache made current and read
// record by record, progress every tenth record, a cancel ends it. An error
// shows "An error occurred during criteria search." and marks it Failed.
CriteriaRun RunSearch(Session& session, ResearchState& state, const CriteriaList& list,
                      Progress* progress = nullptr);

// ---------------------------------------------------------------- results

// passes / enabled as "0.0%"; "0.0%" with nothing enabled.
std::string PercentPassedText(int passed, int enabled);
// The results screen's three labelled lines.
std::vector<std::string> SearchResultLines(int enabled, int passed);
// "Enable Only Passed Records in Current Project": asks first when records
// are already disabled; disables every record whose flag is false. True
// when it did.
bool DisableFailedRecords(Session& session, const std::vector<int16_t>& passedFlags);
// "Create New Project with Records which Passed Criteria": the passed
// records become the project "Unnamed1" with the old title and " - After
// Search Criteria", saved through the Save As dialogue; a cancel or a
// failed save puts the old project back from its files. The flags are
// cleared once done. True when the new project was written.
bool CreatePassedProject(Session& session, std::vector<int16_t>& passedFlags);
// The "Search Results Report" as text lines: head, project title, optional
// subtitle, "List of Selection Criteria", the counts, then all records with
// the passed ones marked or the passed records only.
std::vector<std::string> SearchResultsReport(const Session& session, const std::vector<std::string>& criteriaLines,
                                             const std::vector<int16_t>& passedFlags, bool allRecords,
                                             const std::string& subTitle = "");

}  // namespace vintar

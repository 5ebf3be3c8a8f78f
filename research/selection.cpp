// Record selection by category: the condition list, its text, the value
// normalisation, and the evaluation over the open project.
#include "research/selection.h"

#include <algorithm>
#include <cmath>

#include "core/parse.h"
#include "core/project_file.h"
#include "core/text.h"
#include "research/criteria.h"

namespace vintar {

namespace {

enum SelField : int {
  kDescriptionField = 0,
  kDateField = 1,
  kDayRangeField = 2,
  kDetailField = 3,
  kZoneAbbrField = 4,
  kZoneTimeField = 5,
  kTimeField = 6,
  kPlaceField = 7,
  kLatitudeField = 8,
  kLongitudeField = 9,
};

double DateNumber(int year, int month, int day) { return year * 10000.0 + month * 100.0 + day; }
double TimeNumber(int hour, int minute, int second) { return hour * 10000.0 + minute * 100.0 + second; }
// Zones, latitudes and longitudes agree to the whole second.
double Seconds(double value) { return std::nearbyint(value * 3600.0); }
bool SecondsField(int field) {
  return field == kZoneTimeField || field == kLatitudeField || field == kLongitudeField;
}

std::string Category(const EventRecord& e, int category) {
  const std::vector<std::string> elements = SplitOnText(e.Categories, "|", category);
  return category >= 1 && static_cast<int>(elements.size()) >= category ? Trim(elements[category - 1]) : "";
}

int CategoryType(const Session& session, int category) {
  std::string name;
  int type = 0;
  GetCategoryDefinition(session.project.Header, category, name, type);
  return type;
}

// The record's value of a field as a number and as text.
double NumberOf(const EventRecord& e, int field) {
  switch (field) {
    case kDescriptionField: return Val(e.Description);
    case kDateField: return DateNumber(e.Year, e.Month, e.Day);
    case kDayRangeField: return e.DayRange;
    case kDetailField: return e.DetailLevel;
    case kZoneAbbrField: return Val(e.ZoneAbbr);
    case kZoneTimeField: return Seconds(e.ZoneHours);
    case kTimeField: return TimeNumber(e.Hour, e.Minute, e.Second);
    case kPlaceField: return Val(e.Placename);
    case kLatitudeField: return Seconds(e.Latitude);
    case kLongitudeField: return Seconds(e.Longitude);
    default: return 0;
  }
}

std::string TextOf(const Session& session, const EventRecord& e, int field) {
  switch (field) {
    case kDescriptionField: return e.Description;
    case kDateField: return FormatDate(session, e.Day, e.Month, e.Year);
    case kDayRangeField: return std::to_string(e.DayRange);
    case kDetailField: return std::to_string(e.DetailLevel);
    case kZoneAbbrField: return e.ZoneAbbr;
    case kZoneTimeField: return FormatZone(e.ZoneHours);
    case kTimeField: return FormatTime(e.Hour, e.Minute, e.Second, session.prefs.AMPM != 0);
    case kPlaceField: return e.Placename;
    case kLatitudeField: return FormatLatitude(e.Latitude);
    case kLongitudeField: return FormatLongitude(e.Longitude);
    default: return "";
  }
}

bool CompareNumbers(double left, double right, int condition) {
  switch (condition) {
    case 0: return left == right;
    case 1: return left != right;
    case 2: return left > right;
    case 3: return left >= right;
    case 4: return left < right;
    case 5: return left <= right;
    default: return false;
  }
}

bool CompareTexts(const std::string& left, const std::string& right, int condition) {
  switch (condition) {
    case 0:
    case 6: return EqualsIgnoreCase(left, right);
    case 1: return !EqualsIgnoreCase(left, right);
    case 7: return UCase(left).find(UCase(right)) != std::string::npos;
    case 8:
      return left.size() >= right.size() &&
             EqualsIgnoreCase(std::string_view(left).substr(0, right.size()), right);
    default: return false;
  }
}

bool ConditionHolds(const Session& session, const SelCriterion& c, double number, const EventRecord& e) {
  bool result = false;
  if (c.Field < kSelRecordFields) {
    result = c.Condition < 6 ? CompareNumbers(NumberOf(e, c.Field), number, c.Condition)
                             : CompareTexts(TextOf(session, e, c.Field), c.Value, c.Condition);
  } else {
    const int category = c.Field - kSelRecordFields + 1;
    const std::string element = Category(e, category);
    if (CategoryType(session, category) == 1 && c.Condition < 6)
      result = CompareNumbers(Val(element), Val(c.Value), c.Condition);
    else
      result = CompareTexts(element, c.Value, c.Condition);
  }
  return c.Negated ? !result : result;
}

}  // namespace

std::vector<std::string> SelFieldNames(const Session& session) {
  std::vector<std::string> names;
  const auto& fields = session.vocab.RecordFieldName;
  for (int f = 0; f < kSelRecordFields && f < static_cast<int>(fields.size()); ++f) names.push_back(fields[f]);
  for (int k = 1; k <= session.project.Header.CategoryCount; ++k) {
    std::string name;
    int type = 0;
    GetCategoryDefinition(session.project.Header, k, name, type);
    names.push_back(Trim(name));
  }
  return names;
}

std::string NormaliseSelValue(Session& session, int field, const std::string& input) {
  const std::string text = Trim(input);
  bool failed = false;
  switch (field) {
    case kDateField: {
      int16_t d = 0, m = 0, y = 0;
      ParseDate(session, text, d, m, y, false, failed);
      return failed ? "1 Jan 1999" : FormatDate(session, d, m, y);
    }
    case kTimeField: {
      int16_t h = 0, m = 0, s = 0;
      ParseTime(session, text, h, m, s, false, failed);
      return FormatTime(failed ? 0 : h, failed ? 0 : m, failed ? 0 : s, session.prefs.AMPM != 0);
    }
    case kZoneTimeField: {
      float hours = 0;
      std::string mnemonic;
      ParseZone(session, text, hours, mnemonic, false, failed);
      if (!failed) return FormatZone(hours);
      return std::string(1, !text.empty() && text[0] == '-' ? '-' : '+') + "0:00";
    }
    case kLatitudeField: {
      double v = 0;
      ParseLatitude(session, text, v, false, failed);
      return failed ? "00N00" : FormatLatitude(v);
    }
    case kLongitudeField: {
      double v = 0;
      ParseLongitude(session, text, v, false, failed);
      return failed ? "00W00" : FormatLongitude(v);
    }
    default: return text.substr(0, kSelValueChars);
  }
}

void AddSelCriterion(SelectionList& list, int field, int condition, const std::string& value) {
  SelCriterion c;
  c.Field = static_cast<int16_t>(std::clamp(field, 0, 32767));
  c.Condition = condition;
  c.Value = Trim(value).substr(0, kSelValueChars);
  list.Items.push_back(c);
}

void SetSelConnective(SelectionList& list, const std::vector<int>& selected, int connective) {
  for (int i : selected)
    if (i > 1 && i <= list.Count()) list.Items[i].Connective = connective;
}

void ToggleSelNegated(SelectionList& list, const std::vector<int>& selected) {
  for (int i : selected)
    if (i >= 1 && i <= list.Count()) list.Items[i].Negated = list.Items[i].Negated ? kFalse : kTrue;
}

void DeleteSelCriteria(SelectionList& list, const std::vector<int>& selected) {
  std::vector<SelCriterion> kept(1);
  for (int i = 1; i <= list.Count(); ++i)
    if (std::find(selected.begin(), selected.end(), i) == selected.end()) kept.push_back(list.Items[i]);
  list.Items = std::move(kept);
}

bool ToggleSelBrackets(Session& session, SelectionList& list, int first, int last) {
  return ToggleBrackets(session, list.Count(), first, last,
                        [&list](int k) -> int16_t& { return list.Items[k].NestLevel; });
}

std::string SelCriterionText(const Session& session, const SelectionList& list, int i) {
  if (i < 1 || i > list.Count()) return "";
  const SelCriterion& c = list.Items[i];
  const Vocabulary& v = session.vocab;
  std::string line;
  if (i > 1 && c.Connective >= 0 && c.Connective < static_cast<int>(v.ConnectiveName.size()))
    line = v.ConnectiveName[c.Connective];
  line.resize(std::max<size_t>(line.size(), 4), ' ');
  const int previous = i > 1 ? list.Items[i - 1].NestLevel : 0;
  const int next = i < list.Count() ? list.Items[i + 1].NestLevel : 0;
  for (int level = 1; level <= c.NestLevel; ++level) line += level > previous ? "( " : "  ";
  if (c.Negated) line += "Not ";
  std::string field;
  if (c.Field < kSelRecordFields) {
    field = c.Field >= 0 && c.Field < static_cast<int>(v.RecordFieldName.size()) ? v.RecordFieldName[c.Field] : "";
  } else {
    int type = 0;
    GetCategoryDefinition(session.project.Header, c.Field - kSelRecordFields + 1, field, type);
    field = Trim(field);
    if (field.empty()) field = "Category " + std::to_string(c.Field - kSelRecordFields + 1);
  }
  const std::string condition =
      c.Condition >= 0 && c.Condition < static_cast<int>(v.ComparisonName.size()) ? v.ComparisonName[c.Condition] : "?";
  line += field + " " + condition + " \"" + c.Value + "\"";
  for (int k = next; k < c.NestLevel; ++k) line += " )";
  return line;
}

PreparedSelection PrepareSelection(Session& session, const SelectionList& list) {
  PreparedSelection p;
  p.Numbers.assign(list.Items.size(), 0.0);
  for (int i = 1; i <= list.Count(); ++i) {
    const SelCriterion& c = list.Items[i];
    const std::string text = Trim(c.Value);
    bool failed = false;
    double number = Val(text);
    switch (c.Field) {
      case kDateField: {
        int16_t d = 0, m = 0, y = 0;
        ParseDate(session, text, d, m, y, false, failed);
        number = failed ? DateNumber(1999, 1, 1) : DateNumber(y, m, d);
        break;
      }
      case kTimeField: {
        int16_t h = 0, m = 0, s = 0;
        ParseTime(session, text, h, m, s, false, failed);
        number = failed ? 0 : TimeNumber(h, m, s);
        break;
      }
      case kZoneTimeField: {
        float hours = 0;
        std::string mnemonic;
        ParseZone(session, text, hours, mnemonic, false, failed);
        number = failed ? 0 : hours;
        break;
      }
      case kLatitudeField:
      case kLongitudeField: {
        double v = 0;
        if (c.Field == kLatitudeField) ParseLatitude(session, text, v, false, failed);
        else ParseLongitude(session, text, v, false, failed);
        number = failed ? 0 : v;
        break;
      }
      default: break;
    }
    if (SecondsField(c.Field)) number = Seconds(number);
    p.Numbers[i] = number;
  }
  return p;
}

int16_t EvaluateSelection(const Session& session, const SelectionList& list, const PreparedSelection& prepared,
                          const EventRecord& record, int first, int last) {
  if (first < 1 || last > list.Count() || first > last) return kFalse;
  return EvaluateBracketed(
      first, last, [&list](int k) { return static_cast<int>(list.Items[k].NestLevel); },
      [&list](int k) { return static_cast<int>(list.Items[k].Connective); },
      [&](int k) {
        const double number = k < static_cast<int>(prepared.Numbers.size()) ? prepared.Numbers[k] : 0.0;
        return ConditionHolds(session, list.Items[k], number, record) ? kTrue : kFalse;
      });
}

SelectionRun RunSelection(Session& session, const SelectionList& list, Progress* progress) {
  SelectionRun run;
  if (list.Count() < 1) return run;
  if (progress) {
    progress->Caption("Selecting Records");
    progress->Status("Preparing Criteria...");
  }
  const PreparedSelection prepared = PrepareSelection(session, list);
  ProjectState& p = session.project;
  const int count = std::clamp<int>(p.Header.RecordCount, 0, static_cast<int>(p.Events.size()) - 1);
  run.PassedFlags.assign(static_cast<size_t>(count) + 1, kFalse);
  for (int i = 1; i <= count; ++i) {
    const EventRecord& e = p.Events[i];
    if (!e.Enabled) continue;
    ++run.Enabled;
    run.PassedFlags[i] = EvaluateSelection(session, list, prepared, e, 1, list.Count());
    if (run.PassedFlags[i]) ++run.Passed;
    if (progress && i % 10 == 0) {
      progress->Status("Records Selected: " + std::to_string(run.Passed));
      progress->Fraction(static_cast<double>(i) / count);
      // A stop leaves the run unfinished: nothing is offered or applied.
      if (progress->Cancelled()) return run;
    }
  }
  run.Ran = true;
  return run;
}

std::string SelectionFinishedText(int passed, int enabled) {
  return std::to_string(passed) + " records were selected from a possible " + std::to_string(enabled) + kLineEnd +
         kLineEnd + "Choose OK to switch off all the unselected records." + kLineEnd +
         "Choose CANCEL to leave the records unchanged.";
}

void ApplySelection(Session& session, const std::vector<int16_t>& flags) {
  ProjectState& p = session.project;
  const int count = std::clamp<int>(p.Header.RecordCount, 0, static_cast<int>(p.Events.size()) - 1);
  for (int i = 1; i <= count; ++i) {
    const bool passed = i < static_cast<int>(flags.size()) && flags[i] != 0;
    if (!passed && p.Events[i].Enabled) {
      p.Events[i].Enabled = kFalse;
      p.Status.DataChanged = kTrue;
    }
  }
}

SelectionRun SelectRecords(Session& session, const SelectionList& list, bool& applied,
                           const std::function<bool(SelectionRun&)>& resultsScreen, Progress* progress) {
  applied = false;
  SelectionRun run = RunSelection(session, list, progress);
  if (!run.Ran) return run;
  if (resultsScreen) {
    applied = resultsScreen(run);
    if (!applied) session.DialogCancelled = kFalse;
    return run;
  }
  const int answer = session.ShowMessage(SelectionFinishedText(run.Passed, run.Enabled), kOkCancel + kIconQuestion,
                                         "Selection Finished");
  if (answer == kOk) {
    ApplySelection(session, run.PassedFlags);
    applied = true;
  }
  return run;
}

}  // namespace vintar

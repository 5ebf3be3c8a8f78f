#include "cli/research_options.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "core/parse.h"
#include "research/dignity.h"

namespace vintar::cli {
namespace {

std::string DefaultListFile(const Session& s, const std::string& name) {
  const std::string user = EnsureBackslash(s.paths.UserDataPath) + name;
  return FileExists(user) ? user : EnsureBackslash(s.paths.SystemDataPath) + name;
}

}  // namespace

void AddPointOptions(CLI::App* cmd, PointArgs& a) {
  cmd->add_option("--point", a.points, "A point by name: Mars, \"Sun/Moon\", \"10th House Cusp\", 15Ar30");
  cmd->add_option("--part", a.parts, "An Arabic part of the parts file, by name or abbreviation");
  cmd->add_option("--almuten", a.almutens, "A chart almuten of the almuten file, by name");
  cmd->add_option("--transform", a.transform, "A transformation for the points named here: \"Ruler (New)\"");
  cmd->add_option("--parts-file", a.partsFile, "The Arabic parts file (.arp); default the shipped vintar.arp");
  cmd->add_option("--almuten-file", a.almutenFile, "The almuten file (.alm); default the shipped vintar.alm");
}

bool ComposePoints(Context& ctx, ResearchState& state, const PointArgs& a) {
  Session& s = ctx.session;
  if (!a.list.empty() && !OpenPointList(s, state, a.list)) return false;
  std::string error;
  std::string parts = !a.partsFile.empty() ? a.partsFile : state.Header.PartsFile;
  std::string almutens = !a.almutenFile.empty() ? a.almutenFile : state.Header.AlmutenFile;
  if (parts.empty()) parts = DefaultListFile(s, "vintar.arp");
  if (almutens.empty()) almutens = DefaultListFile(s, "vintar.alm");
  state.Header.PartsFile = parts;
  state.Header.AlmutenFile = almutens;
  if (!LoadParts(s, state, ResolveListFile(s, parts), error) && !error.empty())
    s.ShowMessage("The parts file " + parts + " could not be read: " + error, kIconExclamation, "Vintar");
  error.clear();
  if (!LoadAlmutens(s, state, ResolveListFile(s, almutens), error) && !error.empty())
    s.ShowMessage("The almuten file " + almutens + " could not be read: " + error, kIconExclamation, "Vintar");

  int transform = 0;
  if (!a.transform.empty()) {
    transform = TransformByName(s, FromArg(a.transform));
    if (transform < 0) {
      s.ShowMessage("There is no transformation named \"" + FromArg(a.transform) + "\".", kIconExclamation,
                    "Unknown Transformation");
      return false;
    }
  }
  auto add = [&](const std::string& name, int type) {
    PointRef ref;
    bool found = false;
    if (type == kChartPointType) {
      found = PointByName(s, state, name, ref);
    } else if (type == kArabicPartType) {
      // A part by its name, with or without "Part of ", or its abbreviation;
      // else every part whose name starts so ("Spirit" gives the day and
      // the night forms).
      auto bare = [](const std::string& n) {
        const std::string t = Trim(n);
        return StartsWithIgnoreCase(t, "Part of ") ? t.substr(8) : t;
      };
      std::vector<size_t> matches;
      for (size_t i = 0; i < state.Parts.size(); ++i)
        if (EqualsIgnoreCase(bare(state.Parts[i].Name), bare(name)) ||
            EqualsIgnoreCase(Trim(state.Parts[i].Abbrev), name))
          matches.push_back(i);
      if (matches.empty())
        for (size_t i = 0; i < state.Parts.size(); ++i)
          if (StartsWithIgnoreCase(bare(state.Parts[i].Name), bare(name))) matches.push_back(i);
      if (matches.empty() || matches.back() >= 255) {
        s.ShowMessage("There is no part named \"" + name + "\" in " + state.PartsFileName + ".", kIconExclamation,
                      "Unknown Point");
        return false;
      }
      for (size_t i : matches) {
        ref.PointType = kArabicPartType;
        ref.Item1 = static_cast<uint8_t>(i + 1);
        ref.Transform = transform;
        if (AddPoint(s, state.Selected, ref) < 0) return false;
      }
      return true;
    } else {
      // An almuten by its name or short name, else the first whose name
      // starts so ("Almuten Figuris").
      for (int pass = 0; pass < 2 && !found; ++pass)
        for (size_t i = 0; i < state.Almutens.size() && !found; ++i) {
          const AlmutenDef& d = state.Almutens[i];
          found = pass == 0 ? EqualsIgnoreCase(Trim(d.Name), name) || EqualsIgnoreCase(Trim(d.ShortName), name)
                            : StartsWithIgnoreCase(Trim(d.Name), name);
          if (found) {
            ref.PointType = kChartAlmutenType;
            ref.Item1 = static_cast<uint8_t>(std::min<size_t>(i + 1, 255));
          }
        }
    }
    if (!found) {
      s.ShowMessage("There is no point named \"" + name + "\".", kIconExclamation, "Unknown Point");
      return false;
    }
    ref.Transform = transform;
    return AddPoint(s, state.Selected, ref) >= 0;
  };
  for (const auto& n : a.points)
    if (!add(FromArg(n), kChartPointType)) return false;
  for (const auto& n : a.parts)
    if (!add(FromArg(n), kArabicPartType)) return false;
  for (const auto& n : a.almutens)
    if (!add(FromArg(n), kChartAlmutenType)) return false;
  return true;
}

void AddTabOptions(CLI::App* cmd, TabArgs& a, const std::string& cellsName) {
  cmd->add_option("project", a.project, "The project (.dat)")->required();
  cmd->add_option("--points", a.points.list, "A point list (.vpt)");
  AddPointOptions(cmd, a.points);
  cmd->add_option("--data-type", a.dataType, "0 zodiac, 1 houses, 2 phases and aspects, 3 dignities, 4 harmonic "
                                             "components, 5 latitude, 6 diurnal arc, 7 right ascension, "
                                             "8 declination, 9 azimuth, 10 altitude, 11 natal details")
      ->check(CLI::Range(0, 11));
  cmd->add_option("--division", a.division, "The division code (the data type's first code when not given)");
  cmd->add_option("--harmonic", a.harmonic, "Harmonic (codes 8, 12, 51, 601, 701)");
  cmd->add_option(cellsName, a.cells, "Number of divisions of the user-defined codes");
  cmd->add_option("--anchor", a.anchor,
                  "Anchor point (12, 52, 601, 701), aspect orb (50, 51), range (402) or century (901)");
  cmd->add_option("--orb", a.orb, "Aspect orb (50, 51) or range (402) in degrees");
  cmd->add_option("--rulers", a.rulers, "new (Modern) or old (Ancient)")
      ->check(CLI::IsMember({"new", "old"}, CLI::ignore_case));
  cmd->add_option("--inexact", a.inexact,
                  "Charts without a full time: 0 exclude only ambiguous points, 1 use the median time, "
                  "2 exclude them")
      ->check(CLI::Range(0, 2));
  cmd->add_option("--style", a.style, "0 raw counts, 1 proportion of total, 2 % of total, 3 proportion of "
                                      "average, 4 % of average")
      ->check(CLI::Range(0, 4));
}

bool TabParams(Context& ctx, TabArgs& a, ResearchState& state, TabulateParams& p) {
  Session& s = ctx.session;
  if (!ComposePoints(ctx, state, a.points)) return false;
  p.DataType = a.dataType;
  p.Code = a.division >= 0 ? a.division : DataTypeOf(a.dataType).FirstCode;
  p.Harmonic = a.harmonic;
  p.UserDivisions = a.cells;
  const DivisionControls controls = ControlsFor(p.DataType, p.Code);
  std::string anchor = a.anchor.empty() ? controls.AnchorDefault : a.anchor;
  if (anchor.empty()) anchor = "0";
  char* end = nullptr;
  p.Anchor = std::strtod(anchor.c_str(), &end);
  if (end == anchor.c_str()) {
    bool failed = false;
    float angle = 0;
    ParseAngle(s, anchor, angle, failed);
    if (failed) return false;
    p.Anchor = angle;
  }
  p.Orb = a.orb > 0 ? a.orb : ((p.Code == 50 || p.Code == 51 || p.Code == 402) ? p.Anchor : 0.0);
  p.Scheme = EqualsIgnoreCase(a.rulers, "old") ? kAncientDayScheme : kModernScheme;
  p.InexactOption = controls.ForcedInexact >= 0 ? controls.ForcedInexact : a.inexact;
  if (!controls.InexactEnabled[p.InexactOption]) p.InexactOption = 2;
  p.Points = state.Selected;
  return CheckWholeDegreeHarmonic(s, p) && CheckTabulateParams(s, p);
}

namespace {

std::vector<std::string> Split(const std::string& text, char at) {
  std::vector<std::string> out;
  std::string part;
  std::istringstream in(text);
  while (std::getline(in, part, at)) out.push_back(part);
  if (!text.empty() && text.back() == at) out.push_back("");
  return out;
}

// "1,5,9", "1..3", "2..4,9": false on anything else.
bool ParseCells(const std::string& text, std::vector<int>& cells) {
  for (const std::string& item : Split(text, ',')) {
    const std::string t = Trim(item);
    const size_t dots = t.find("..");
    char* end = nullptr;
    const long a = std::strtol(t.c_str(), &end, 10);
    if (end == t.c_str()) return false;
    long b = a;
    if (dots != std::string::npos) {
      const std::string rest = t.substr(dots + 2);
      b = std::strtol(rest.c_str(), &end, 10);
      if (end == rest.c_str() || *end) return false;
    } else if (*end) {
      return false;
    }
    if (a > b || a < 1 || b > kCriterionCells) return false;
    for (long c = a; c <= b; ++c) cells.push_back(static_cast<int>(c));
  }
  return !cells.empty();
}

// One --test or --pair: POINT:DATATYPE:DIVISION:CELLS[:key=value...].
bool BuildTerm(Context& ctx, ResearchState& state, const OrderedTerm& term, CriteriaList& list) {
  Session& s = ctx.session;
  auto refuse = [&](const std::string& text) {
    s.ShowMessage(text, kIconExclamation, "Cannot Add");
    return false;
  };
  const std::string value = FromArg(term.Value);
  const std::vector<std::string> parts = Split(value, ':');
  if (parts.size() < 4) return refuse("A test reads POINT:DATATYPE:DIVISION:CELLS, not \"" + value + "\".");
  NewCriterion in;
  char* end = nullptr;
  in.DataType = static_cast<int>(std::strtol(parts[1].c_str(), &end, 10));
  if (end == parts[1].c_str() || *end || in.DataType < 0 || in.DataType >= kDataTypes)
    return refuse("The data type of \"" + value + "\" must be a number from 0 to 11.");
  if (in.DataType == kHarmonicData)
    return refuse("Harmonic components are measured over a whole group of charts; they cannot be a test of one chart.");
  in.Code = static_cast<int>(std::strtol(parts[2].c_str(), &end, 10));
  if (end == parts[2].c_str() || *end || !DivisionBelongs(in.DataType, in.Code))
    return refuse("The division " + parts[2] + " does not belong to the data type " + parts[1] + ".");
  const DivisionControls controls = ControlsFor(in.DataType, in.Code);
  in.Orb = Val(controls.AnchorDefault);
  in.Harmonic = controls.Harmonic ? 1 : 0;
  int minMatches = 1;
  in.InexactOption = 0;
  for (size_t k = 4; k < parts.size(); ++k) {
    const size_t eq = parts[k].find('=');
    const std::string key = Trim(parts[k].substr(0, eq));
    const std::string v = eq == std::string::npos ? "" : Trim(parts[k].substr(eq + 1));
    if (EqualsIgnoreCase(key, "orb")) in.Orb = Val(v);
    else if (EqualsIgnoreCase(key, "harmonic")) in.Harmonic = static_cast<int>(Val(v));
    else if (EqualsIgnoreCase(key, "min")) minMatches = static_cast<int>(Val(v));
    else if (EqualsIgnoreCase(key, "cells")) in.UserDivisions = static_cast<int>(Val(v));
    else if (EqualsIgnoreCase(key, "rulers")) in.ModernRulers = !EqualsIgnoreCase(v, "old");
    else if (EqualsIgnoreCase(key, "inexact")) in.InexactOption = std::clamp(static_cast<int>(Val(v)), 0, 2);
    else return refuse("Unknown setting \"" + parts[k] + "\" in \"" + value + "\".");
  }
  if (controls.ForcedInexact >= 0) in.InexactOption = controls.ForcedInexact;
  if (!controls.InexactEnabled[in.InexactOption]) in.InexactOption = 2;

  if (in.DataType != kNatalDetailsData) {
    const std::vector<std::string> names =
        term.Kind == "--pair" ? Split(parts[0], ',') : std::vector<std::string>{parts[0]};
    for (const std::string& name : names) {
      PointRef ref;
      if (!PointByName(s, state, Trim(name), ref)) {
        s.ShowMessage("There is no point named \"" + Trim(name) + "\".", kIconExclamation, "Unknown Point");
        return false;
      }
      in.Selected.push_back(ref);
    }
  }
  TabulateParams p;
  p.DataType = in.DataType, p.Code = in.Code, p.Harmonic = std::max(1, in.Harmonic);
  p.UserDivisions = in.UserDivisions, p.Anchor = in.Orb, p.Orb = in.Orb;
  p.Scheme = in.ModernRulers ? kModernScheme : kAncientDayScheme;
  in.CellCount = CellCountsOf(p).CellCount;
  if (in.CellCount < 1 || in.CellCount > kCriterionCells)
    return refuse("The division of \"" + value + "\" has no cells with these settings.");
  if (!ParseCells(parts[3], in.Cells))
    return refuse("The cells \"" + parts[3] + "\" are not a list such as 1,5,9 or 1..3.");
  for (int c : in.Cells)
    if (c > in.CellCount)
      return refuse("Cell " + std::to_string(c) + " is beyond the " + std::to_string(in.CellCount) +
                    " cells of this division.");
  if (!AddCriterion(s, list, in)) return false;
  CriterionRecord& c = list.Criteria.back();
  c.MinMatches = static_cast<int16_t>(std::max(1, minMatches));
  c.InexactOption = in.InexactOption;
  c.Operator = term.Operator;
  c.Negate = term.Negate ? kTrue : kFalse;
  c.NestLevel = static_cast<int16_t>(term.Level);
  return true;
}

}  // namespace

bool ComposeCriteria(Context& ctx, ResearchState& state, const std::string& criteriaFile,
                     const std::vector<OrderedTerm>& terms, CriteriaList& list) {
  Session& s = ctx.session;
  if (!criteriaFile.empty() && !terms.empty()) {
    s.ShowMessage("Give either --criteria or tests on the command line, not both.", kIconExclamation, "Cannot Search");
    return false;
  }
  if (!criteriaFile.empty()) {
    if (!OpenCriteriaFile(s, state, criteriaFile, list)) return false;
  } else {
    std::string error;
    // The shipped lists by name: a saved list finds them in the data folders.
    state.Header.PartsFile = "vintar.arp";
    state.Header.AlmutenFile = "vintar.alm";
    LoadParts(s, state, ResolveListFile(s, state.Header.PartsFile), error);
    LoadAlmutens(s, state, ResolveListFile(s, state.Header.AlmutenFile), error);
    list.Header = state.Header;
    for (const OrderedTerm& t : terms)
      if (!BuildTerm(ctx, state, t, list)) return false;
    for (int i = 1; i <= list.Count(); ++i)
      for (int k = 0; k < list.Criteria[i].PointCount; ++k)
        if (std::find(list.Points.begin(), list.Points.end(), list.Criteria[i].Points[k]) == list.Points.end())
          list.Points.push_back(list.Criteria[i].Points[k]);
    list.Header.PointCount = static_cast<int16_t>(list.Points.size());
  }
  return CheckCriteriaList(s, list);
}

}  // namespace vintar::cli

// What a report wrote, read back from its recorded lines.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "output/report_page.h"

namespace vintar::testing {

// The texts of one sheet (1-based), or of every sheet for 0.
inline std::vector<std::string> Texts(const ReportDocument& doc, int sheet = 0) {
  std::vector<std::string> texts;
  for (const ReportLine& line : doc.Lines())
    if (sheet == 0 || line.sheet == sheet) texts.push_back(line.text);
  return texts;
}

inline bool Has(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

}  // namespace vintar::testing

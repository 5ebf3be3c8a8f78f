#include "exchange/send_chart.h"

#include <cstdlib>
#include <filesystem>

#include "core/file_io.h"
#include "core/text.h"
#include "exchange/aaf.h"

namespace vintar {

std::string DocumentsFolder() {
  if (const char* xdg = std::getenv("XDG_DOCUMENTS_DIR"); xdg && *xdg) return EnsureBackslash(xdg);
  const char* home = std::getenv("HOME");
  return EnsureBackslash(std::string(home && *home ? home : ".") + "/Documents");
}

std::string SendChartToSibling(Session& session, const std::string& documentsFolder) {
  const std::string folder = EnsureBackslash(documentsFolder) + "Halcyra User Files/Charts/";
  const std::string path = folder + kSentChartFile;
  if (FileExists(path)) {
    const std::string text =
        std::string("The temporary file used when previously exporting a chart will be overwritten, which is "
                    "normal.") +
        kLineEnd + kLineEnd +
        "However - if you haven't opened the chart in that file and saved it to a different file yet, you will not "
        "be able to do that if you continue with this export." +
        kLineEnd + kLineEnd + "Continue and send this chart to Halcyra?";
    if (session.ShowMessage(text, kYesNo + kIconQuestion + kDefaultButton2, "Send chart to Halcyra") != kYes)
      return {};
  }
  std::error_code ec;
  std::filesystem::create_directories(folder, ec);
  if (!ExportAafFile(session, path, "Send Chart to Halcyra")) return {};
  session.ShowMessage(std::string("Chart file '") + kSentChartFile + "' exported." + kLineEnd +
                          "You can now open the chart in this file using Halcyra." + kLineEnd + kLineEnd +
                          "This is only a temporary file, so it is recommended that once you open the chart you "
                          "save it to a different chart file.",
                      kIconInformation, "Send Chart to Halcyra");
  return path;
}

}  // namespace vintar

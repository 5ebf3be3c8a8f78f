// Sending the open project to the sibling charting program: its natal chart
// and records written as an AAF file that the program (or any other that
// reads AAF) opens, in the folder where it keeps its charts: the user's
// documents folder + "Halcyra User Files/Charts/VTTemp.aaf". A file left by
// an earlier send is replaced only after the question, whose default is No.
//
// Checked by tests/exchange/send_chart_test.cpp.
#pragma once

#include <string>

#include "core/session.h"

namespace vintar {

inline constexpr const char* kSentChartFile = "VTTemp.aaf";

// The user's documents folder: XDG_DOCUMENTS_DIR, else $HOME/Documents.
std::string DocumentsFolder();

// The send, with its question and closing message. Returns the path
// written, empty when the user declined or the file could not be written
// (the message says why).
std::string SendChartToSibling(Session& session, const std::string& documentsFolder);

}  // namespace vintar

// Placeholder, replaced by the peaks and angle search module.
#pragma once
namespace vintar {
struct PeakState {};
}

// Placeholder, replaced by the event graphs module.
#pragma once
namespace vintar {
struct GraphState {};
}

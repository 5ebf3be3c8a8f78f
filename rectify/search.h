// Placeholder, replaced by the dynamic event search module.
#pragma once
namespace vintar {
struct SearchState {};
}

// Placeholder so that the library has a source until its modules land.
namespace vintar {}

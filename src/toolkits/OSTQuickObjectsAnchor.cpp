// Keeps the Qt Quick object library non-empty while src/quick/ is being written.
namespace ostrel {
}

#pragma once

namespace ostrel {

// The toolkits the library at hand carries, added to OSTExperienceToolkits by start-up. Each
// library flavour (core only, Qt Widgets, Qt Quick, both for the project's own tests) links its
// own definition from src/toolkits/, so the core names no toolkit. GUI thread.
class OSTLinkedToolkits {
public:
    OSTLinkedToolkits() = delete;

    static void install();
};

} // namespace ostrel

#pragma once

namespace quorlin {

// How an instrument's control looks in its mode, decided by the logic and
// applied by the widget: a table cell is flat and compact, a form field framed.
struct InstrumentLook {
    enum class LineBreak { clipping, truncatingTail };

    bool bezeled = true;
    bool bordered = true;
    bool drawsBackground = true;
    int bezelStyle = 1;
    LineBreak lineBreak = LineBreak::clipping;
    // The check box's own title beside it; in a table the column header stands for it.
    bool showsTitle = true;
    bool centersVertically = false;
    int datePickerStyle = 0;
    bool drawsBackgroundWhileFirstResponder = false;
    // 0: the system's standard size.
    int fontPointSize = 0;

    friend bool operator==(const InstrumentLook&, const InstrumentLook&) = default;
};

} // namespace quorlin

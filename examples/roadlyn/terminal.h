#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

namespace roadlyn {

/// Wakes a thread that waits for input: written on any thread, in signal handlers too.
class WakePipe {
public:
    WakePipe();
    WakePipe(const WakePipe&) = delete;
    WakePipe& operator=(const WakePipe&) = delete;
    ~WakePipe();

    void Wake() const;
    /// Waits for a wake-up or for input on standard input, at most `milliseconds` (negative: no limit); takes the
    /// wake-ups away. True when there was one.
    bool Wait(int milliseconds) const;

private:
    int m_ends[2];
};

/// One key: a character, or a key of its own.
struct Key {
    enum class Kind {
        Character,
        Up,
        Down,
        PageUp,
        PageDown,
        Home,
        End,
        Enter,
        Backspace,
        ClearAll,
        Leave,
        Resize,
        Other
    };
    Kind kind;
    std::string text;  ///< UTF-8, of a character.
};

/// The terminal in full-screen mode; its former state comes back in the destructor, and on SIGTERM and SIGHUP, which
/// count as the key that leaves. One at a time, main thread only.
class Terminal {
public:
    enum class Style { Plain, Bold, Dim, Selected, Warning };

    /// Throws std::runtime_error when the terminal cannot do it. `wake` must outlive the object.
    explicit Terminal(const WakePipe& wake);
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal();

    int Rows() const;
    int Columns() const;

    /// The next key that was pressed, if any.
    std::optional<Key> NextKey();

    /// Drawing: Clear, then Put, then Show, which sends only what differs from the screen shown before.
    void Clear();
    /// Puts `text` (UTF-8) at a position, cut to `width` columns; the rest of the width is blank. Characters that
    /// cannot be shown become '?'. Returns the columns the text took.
    int Put(int row, int column, int width, const std::string& text, Style style = Style::Plain);
    void Show(int cursorRow, int cursorColumn);

private:
    void* m_screen;  // SCREEN*; owned
};

}  // namespace roadlyn

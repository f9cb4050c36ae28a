#pragma once

#include <QStringView>
#include <QVarLengthArray>

namespace ostrel {

// The value of an attribute while one resolution step after another rewrites it: a local
// buffer, so that the rewriting costs no allocation; the result is stored as a string once.
// Internal to the layout engine (not exported); used on the GUI thread only.
class OSTLayoutFormula {
public:
    // What one look at a formula tells the steps: which of the characters they act on occur at
    // all. The steps only remove such characters or add digits, points, operators and the
    // letters of "inf" and "nan", so what the look finds stays true (or at worst says "maybe")
    // throughout.
    struct Traits {
        // The index in `letters` of the first letter of "statusBar"; the four attributes' first
        // letters are at their own indexes.
        static constexpr int statusBarLetter = 4;

        bool percent = false;
        bool brace = false;
        // Some "{" is followed by another "{" before a "}": only then can replacing one reference
        // complete another one around it.
        bool nestedBrace = false;
        // The first letters of "x", "y", "width", "height" and "statusBar", in that order.
        bool letters[5] = {};
    };

    QStringView view() const { return QStringView(m_text.constData(), m_text.size()); }
    qsizetype size() const { return m_text.size(); }

    Traits traits() const;

    void clear() { m_text.clear(); }
    void truncate(qsizetype size) { m_text.resize(size); }
    // `text` must not be a view of this formula.
    void append(QStringView text) { m_text.append(text.utf16(), text.size()); }
    void assign(QStringView text)
    {
        m_text.clear();
        append(text);
    }
    // Becomes a copy of `other`, whose contents are not needed any more.
    void takeFrom(const OSTLayoutFormula &other) { m_text = other.m_text; }

    // The first occurrence of `needle` at or after `from`, or -1. Occurrences of a text that
    // begins with a character it does not contain again cannot overlap, so for the brace
    // texts of references this costs at most one comparison per character.
    qsizetype find(QStringView needle, qsizetype from = 0) const
    {
        const qsizetype last = m_text.size() - needle.size();
        const char16_t first = needle.front().unicode();
        for (; from <= last; ++from) {
            if (m_text[from] == first && view().sliced(from, needle.size()) == needle)
                return from;
        }
        return -1;
    }

    // Every occurrence of `needle`, left to right without overlap, as QString::replace and
    // the platform's replacing of occurrences do, in one pass. `with` must not be a view of
    // this formula.
    void replaceAll(QStringView needle, QStringView with);

private:
    QVarLengthArray<char16_t, 160> m_text;
};

} // namespace ostrel

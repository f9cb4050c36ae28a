#include "layout/OSTLayoutFormula.h"

#include <array>

namespace ostrel {

namespace {

enum CharacterFlag : unsigned {
    Percent = 1,
    OpenBrace = 2,
    CloseBrace = 4,
    LetterX = 8, // then y, w, h, s
};

constexpr auto kCharacterFlags = [] {
    std::array<unsigned, 128> flags{};
    flags[u'%'] = Percent;
    flags[u'{'] = OpenBrace;
    flags[u'}'] = CloseBrace;
    flags[u'x'] = LetterX;
    flags[u'y'] = LetterX << 1;
    flags[u'w'] = LetterX << 2;
    flags[u'h'] = LetterX << 3;
    flags[u's'] = LetterX << 4;
    return flags;
}();

} // namespace

OSTLayoutFormula::Traits OSTLayoutFormula::traits() const
{
    Traits traits;
    unsigned seen = 0;
    bool open = false;
    for (const char16_t code : m_text) {
        if (code >= 128)
            continue;
        const unsigned flag = kCharacterFlags[code];
        seen |= flag;
        if (flag & (OpenBrace | CloseBrace)) {
            traits.nestedBrace = traits.nestedBrace || (open && (flag & OpenBrace));
            open = flag & OpenBrace;
        }
    }
    traits.percent = seen & Percent;
    traits.brace = seen & OpenBrace;
    for (int letter = 0; letter <= Traits::statusBarLetter; ++letter)
        traits.letters[letter] = seen & (LetterX << letter);
    return traits;
}

void OSTLayoutFormula::replaceAll(QStringView needle, QStringView with)
{
    qsizetype found = find(needle);
    if (found < 0)
        return;
    QVarLengthArray<char16_t, 160> result;
    qsizetype copied = 0;
    while (found >= 0) {
        result.append(m_text.constData() + copied, found - copied);
        result.append(with.utf16(), with.size());
        copied = found + needle.size();
        found = find(needle, copied);
    }
    result.append(m_text.constData() + copied, m_text.size() - copied);
    m_text = result;
}

} // namespace ostrel

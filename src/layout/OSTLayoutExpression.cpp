#include "layout/OSTLayoutExpression.h"

#include "layout/OSTLayoutNumbers.h"

namespace ostrel {

namespace {

class Parser {
public:
    explicit Parser(QStringView text) : m_text(text) {}

    std::optional<double> parse()
    {
        const double value = expression();
        skipSpaces();
        if (m_failed || m_position != m_text.size())
            return std::nullopt;
        return value;
    }

private:
    // Space, tab, line feed, vertical tab, form feed, carriage return.
    static bool isSpace(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }
    static bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

    void skipSpaces()
    {
        while (m_position < m_text.size() && isSpace(m_text[m_position].unicode()))
            ++m_position;
    }

    // The next character after white space, or 0 at the end.
    char16_t peek()
    {
        skipSpaces();
        return m_position < m_text.size() ? m_text[m_position].unicode() : u'\0';
    }

    double fail()
    {
        m_failed = true;
        return 0.0;
    }

    double expression()
    {
        double value = term();
        while (!m_failed) {
            const char16_t c = peek();
            if (c != u'+' && c != u'-')
                break;
            ++m_position;
            const double right = term();
            value = c == u'+' ? value + right : value - right;
        }
        return value;
    }

    double term()
    {
        double value = factor();
        while (!m_failed) {
            const char16_t c = peek();
            if (c != u'*' && c != u'/')
                break;
            ++m_position;
            const double right = factor();
            value = c == u'*' ? value * right : value / right;
        }
        return value;
    }

    double factor()
    {
        if (m_failed)
            return 0.0;
        // Unary minus signs are counted in a loop rather than by recursion; they count towards
        // the nesting depth all the same.
        int negations = 0;
        while (peek() == u'-') {
            ++m_position;
            if (++negations + m_depth > OSTLayoutExpression::maximumNestingDepth)
                return fail();
        }
        const double value = primary();
        return negations % 2 ? -value : value;
    }

    double primary()
    {
        const char16_t c = peek();
        if (c == u'(') {
            if (++m_depth > OSTLayoutExpression::maximumNestingDepth)
                return fail();
            ++m_position;
            const double value = expression();
            if (m_failed || peek() != u')')
                return fail();
            ++m_position;
            --m_depth;
            return value;
        }
        if (isDigit(c) || c == u'.')
            return number();
        return fail();
    }

    double number()
    {
        const qsizetype start = m_position;
        qsizetype integerDigits = 0;
        qsizetype fractionDigits = 0;
        // The digits as an integer while that is exact in a double: then the value is that
        // integer over a power of ten, correctly rounded, as the full reading gives it.
        quint64 mantissa = 0;
        bool exact = true;
        const auto digit = [&](char16_t c) {
            if (mantissa > (quint64(1) << 53) / 10)
                exact = false;
            else
                mantissa = mantissa * 10 + quint64(c - u'0');
        };
        while (m_position < m_text.size() && isDigit(m_text[m_position].unicode())) {
            digit(m_text[m_position].unicode());
            ++m_position;
            ++integerDigits;
        }
        if (m_position < m_text.size() && m_text[m_position] == u'.') {
            ++m_position;
            while (m_position < m_text.size() && isDigit(m_text[m_position].unicode())) {
                digit(m_text[m_position].unicode());
                ++m_position;
                ++fractionDigits;
            }
        }
        if (integerDigits == 0 && fractionDigits == 0)
            return fail(); // a point alone
        static constexpr double powersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
        if (exact && mantissa <= (quint64(1) << 53) && fractionDigits <= 22)
            return double(mantissa) / powersOfTen[fractionDigits];
        return OSTLayoutNumbers::decimalValue(m_text.sliced(start, m_position - start));
    }

    QStringView m_text;
    qsizetype m_position = 0;
    int m_depth = 0;
    bool m_failed = false;
};

} // namespace

std::optional<double> OSTLayoutExpression::evaluate(QStringView text)
{
    return Parser(text).parse();
}

} // namespace ostrel

#pragma once

#include <QStringView>

#include <optional>

namespace ostrel {

// The arithmetic of layout formulas (the last step of resolving an attribute), a small
// recursive-descent parser of our own:
//
//   expression := term (("+" | "-") term)*
//   term       := factor (("*" | "/") factor)*
//   factor     := "-" factor | number | "(" expression ")"
//   number     := digits ["." [digits]] | "." digits
//
// White space may stand between tokens. Evaluation is in double precision with the usual
// precedence, left to right within a level, so 10 - 2 - 3 is 5 and 8 / 2 / 2 is 2. Division by
// zero gives an infinity or NaN, which the caller rejects.
class OSTLayoutExpression {
public:
    OSTLayoutExpression() = delete;

    // Parentheses and unary minus signs nested deeper than this make a text malformed, so a
    // hostile formula cannot exhaust the stack.
    static constexpr int maximumNestingDepth = 200;

    // The value of `text`, or nothing when it is not a well-formed expression: empty, a
    // character outside the grammar (names, exponents, "+" as a sign, commas), a missing
    // operand, unbalanced parentheses or nesting beyond maximumNestingDepth.
    static std::optional<double> evaluate(QStringView text);
};

} // namespace ostrel

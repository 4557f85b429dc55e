#pragma once
// The simple search language as a tree: terms, "phrases", -excluded, AND
// (blank or the word AND), OR (| or the word OR), groups in parentheses and
// a NEAR/n b. Binding, tightest first: -, NEAR, AND, OR. A quote, bar,
// parenthesis or backslash is taken literally after a backslash.
//
// A unit matches when the tree is true for it. Its marks are the occurrences
// that make it true: every occurrence of a term in a true AND or in a true
// branch of an OR, for NEAR the occurrences that have a partner of the other
// side at most n words away (words strictly between them). Excluded parts
// never mark.
#include <QString>
#include <cstdint>
#include <vector>

namespace tav {
namespace find {

struct XQueryNode {
    enum Kind : uint8_t { TERM, AND, OR, NOT, NEAR };
    Kind kind = TERM;
    uint32_t term = 0;       // TERM: index into XQuery::terms
    uint32_t distance = 0;   // NEAR: most words between the two sides
    std::vector<uint32_t> kids;
};

class XQuery {
public:
    static constexpr uint32_t DEFAULT_NEAR = 10;

    // False with error() and errorPosition() (a character, from 1) when the text
    // cannot be used. Terms equal under case folding are one term unless
    // 'matchCase'.
    bool parse(const QString& text, bool matchCase);

    // Unique terms, longest first (the longer wins where two start at one place).
    std::vector<QString> terms;
    std::vector<XQueryNode> nodes;
    uint32_t root = 0;
    bool hasNear = false;

    const QString& error() const { return sError_; }
    int errorPosition() const { return errorPos_; }

    // The tree in a fixed form, e.g. (OR 'a' (AND 'b' (NOT 'c'))).
    QString toString() const { return toString(root); }
    QString toString(uint32_t node) const;
    // The tree's value when only the terms with present[i] are in a unit.
    bool value(const std::vector<char>& present) const { return value(root, present); }
    bool value(uint32_t node, const std::vector<char>& present) const;
    // The expression is one term, found wherever it occurs.
    bool isSingleTerm() const { return nodes[root].kind == XQueryNode::TERM; }

private:
    QString sError_;
    int errorPos_ = 0;
};

} // namespace find
} // namespace tav

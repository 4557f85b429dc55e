#include "base/find/XQuery.h"

#include <QHash>
#include <algorithm>

namespace tav {
namespace find {

namespace {

struct Token {
    enum Kind { END, WORD, PHRASE, MINUS, LPAREN, RPAREN, OR, AND, NEAR };
    Kind kind = END;
    QString text;        // WORD, PHRASE
    uint32_t distance = XQuery::DEFAULT_NEAR;
    int pos = 0;         // index into the text
};

bool isOperatorChar(QChar c) { return c == QLatin1Char('"') || c == QLatin1Char('(') || c == QLatin1Char(')') || c == QLatin1Char('|'); }
bool isEscapable(QChar c) { return isOperatorChar(c) || c == QLatin1Char('\\'); }

class Parser {
public:
    Parser(const QString& text, bool matchCase, XQuery& q) : t_(text), matchCase_(matchCase), q_(q) {}

    bool run() {
        if (!tokenize()) return false;
        if (toks_.size() == 1) return fail(0, QStringLiteral("nothing to find"));
        uint32_t root = 0;
        if (!parseOr(root)) return false;
        if (cur().kind != Token::END) return failAt(cur());
        q_.root = root;
        sortTerms();
        if (q_.value(std::vector<char>(q_.terms.size(), 0)))
            return fail(firstMinus_ >= 0 ? firstMinus_ : 0, QStringLiteral("nothing to find: only excluded terms"));
        return true;
    }

    QString error;
    int errorIndex = -1;

private:
    bool fail(int index, const QString& why) {
        errorIndex = index;
        error = why;
        return false;
    }
    // The message for a token that cannot stand where it is.
    bool failAt(const Token& tk) {
        switch (tk.kind) {
        case Token::RPAREN: return fail(tk.pos, QStringLiteral("unbalanced parenthesis"));
        case Token::OR: return fail(tk.pos, QStringLiteral("OR needs a term on both sides"));
        case Token::AND: return fail(tk.pos, QStringLiteral("AND needs a term on both sides"));
        case Token::NEAR: return fail(tk.pos, QStringLiteral("NEAR needs a term on both sides"));
        default: return fail(tk.pos, QStringLiteral("a term is missing"));
        }
    }

    // Reads text[i] with the backslash escapes; false at the end.
    bool tokenize() {
        const int n = t_.size();
        int i = 0;
        while (i < n) {
            if (t_[i].isSpace()) {
                ++i;
                continue;
            }
            Token tk;
            tk.pos = i;
            const QChar c = t_[i];
            if (c == QLatin1Char('(') || c == QLatin1Char(')') || c == QLatin1Char('|')) {
                tk.kind = c == QLatin1Char('(') ? Token::LPAREN : c == QLatin1Char(')') ? Token::RPAREN : Token::OR;
                ++i;
            } else if (c == QLatin1Char('"')) {
                int j = i + 1;
                QString s;
                for (; j < n && t_[j] != QLatin1Char('"'); ++j) {
                    if (t_[j] == QLatin1Char('\\') && j + 1 < n && isEscapable(t_[j + 1])) ++j;
                    s += t_[j];
                }
                if (j >= n) return fail(i, QStringLiteral("unbalanced quote"));
                i = j + 1;
                if (s.isEmpty()) continue;   // "" finds nothing and asks for nothing
                tk.kind = Token::PHRASE;
                tk.text = s;
            } else if (c == QLatin1Char('-') && i + 1 < n && !t_[i + 1].isSpace() && t_[i + 1] != QLatin1Char(')') &&
                       t_[i + 1] != QLatin1Char('|')) {
                tk.kind = Token::MINUS;
                if (firstMinus_ < 0) firstMinus_ = i;
                ++i;
            } else {
                QString s;
                bool escaped = false;
                int j = i;
                for (; j < n && !t_[j].isSpace() && !isOperatorChar(t_[j]); ++j) {
                    if (t_[j] == QLatin1Char('\\') && j + 1 < n && isEscapable(t_[j + 1])) {
                        ++j;
                        escaped = true;
                    }
                    s += t_[j];
                }
                i = j;
                tk.kind = Token::WORD;
                tk.text = s;
                if (!escaped && !afterMinus()) {
                    if (s == QLatin1String("OR")) tk.kind = Token::OR;
                    else if (s == QLatin1String("AND")) tk.kind = Token::AND;
                    else if (s == QLatin1String("NEAR")) tk.kind = Token::NEAR;
                    else if (s.startsWith(QLatin1String("NEAR/"))) {
                        bool ok = false;
                        const uint n = s.mid(5).toUInt(&ok);
                        if (!ok || n > 100000) return fail(tk.pos, QStringLiteral("NEAR/n needs a number of words"));
                        tk.kind = Token::NEAR;
                        tk.distance = n;
                    }
                }
            }
            toks_.push_back(tk);
        }
        Token end;
        end.pos = n;
        toks_.push_back(end);
        return true;
    }
    bool afterMinus() const { return !toks_.empty() && toks_.back().kind == Token::MINUS; }

    const Token& cur() const { return toks_[k_]; }
    static bool startsOperand(Token::Kind k) {
        return k == Token::WORD || k == Token::PHRASE || k == Token::MINUS || k == Token::LPAREN;
    }

    uint32_t add(XQueryNode node) {
        q_.nodes.push_back(std::move(node));
        return uint32_t(q_.nodes.size() - 1);
    }
    uint32_t combine(XQueryNode::Kind kind, std::vector<uint32_t> kids) {
        if (kids.size() == 1) return kids[0];
        XQueryNode node;
        node.kind = kind;
        for (uint32_t k : kids) {
            // (a b) c is a b c: one level per run of the same operator
            if (q_.nodes[k].kind == kind) {
                const std::vector<uint32_t> inner = q_.nodes[k].kids;
                node.kids.insert(node.kids.end(), inner.begin(), inner.end());
            } else {
                node.kids.push_back(k);
            }
        }
        return add(std::move(node));
    }

    bool parseOr(uint32_t& out) {
        std::vector<uint32_t> kids(1);
        if (!parseAnd(kids[0])) return false;
        while (cur().kind == Token::OR) {
            const Token op = cur();
            ++k_;
            if (!startsOperand(cur().kind)) return failAt(op);
            kids.emplace_back();
            if (!parseAnd(kids.back())) return false;
        }
        out = combine(XQueryNode::OR, kids);
        return true;
    }

    bool parseAnd(uint32_t& out) {
        std::vector<uint32_t> kids(1);
        if (!parseNear(kids[0])) return false;
        for (;;) {
            if (cur().kind == Token::AND) {
                const Token op = cur();
                ++k_;
                if (!startsOperand(cur().kind)) return failAt(op);
            } else if (!startsOperand(cur().kind)) {
                break;
            }
            kids.emplace_back();
            if (!parseNear(kids.back())) return false;
        }
        out = combine(XQueryNode::AND, kids);
        return true;
    }

    bool parseNear(uint32_t& out) {
        if (!parseUnary(out)) return false;
        while (cur().kind == Token::NEAR) {
            const Token op = cur();
            ++k_;
            uint32_t right = 0;
            if (q_.nodes[out].kind == XQueryNode::NOT || !startsOperand(cur().kind) || cur().kind == Token::MINUS) return failAt(op);
            if (!parseUnary(right)) return false;
            XQueryNode node;
            node.kind = XQueryNode::NEAR;
            node.distance = op.distance;
            node.kids = {out, right};
            out = add(std::move(node));
            q_.hasNear = true;
        }
        return true;
    }

    bool parseUnary(uint32_t& out) {
        if (cur().kind == Token::MINUS) {
            ++k_;
            uint32_t child = 0;
            if (!parseUnary(child)) return false;
            XQueryNode node;
            node.kind = XQueryNode::NOT;
            node.kids = {child};
            out = add(std::move(node));
            return true;
        }
        return parsePrimary(out);
    }

    bool parsePrimary(uint32_t& out) {
        const Token tk = cur();
        if (tk.kind == Token::WORD || tk.kind == Token::PHRASE) {
            ++k_;
            XQueryNode node;
            node.kind = XQueryNode::TERM;
            node.term = termIndex(tk.text);
            out = add(std::move(node));
            return true;
        }
        if (tk.kind == Token::LPAREN) {
            ++k_;
            if (cur().kind == Token::RPAREN) return fail(tk.pos, QStringLiteral("empty parentheses"));
            if (!parseOr(out)) return false;
            if (cur().kind != Token::RPAREN) {
                if (cur().kind == Token::END) return fail(tk.pos, QStringLiteral("unbalanced parenthesis"));
                return failAt(cur());
            }
            ++k_;
            return true;
        }
        if (tk.kind == Token::END) {
            // Only reached after an operator that needed something on its right.
            return fail(tk.pos, QStringLiteral("a term is missing"));
        }
        return failAt(tk);
    }

    uint32_t termIndex(const QString& text) {
        const QString key = matchCase_ ? text : text.toCaseFolded();
        auto it = index_.constFind(key);
        if (it != index_.constEnd()) return it.value();
        q_.terms.push_back(text);
        const uint32_t i = uint32_t(q_.terms.size() - 1);
        index_.insert(key, i);
        return i;
    }

    // Longer terms first; the tree follows the new numbers.
    void sortTerms() {
        std::vector<uint32_t> order(q_.terms.size());
        for (uint32_t i = 0; i < order.size(); ++i) order[i] = i;
        std::stable_sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) {
            return q_.terms[a].toUcs4().size() > q_.terms[b].toUcs4().size();
        });
        std::vector<uint32_t> newIndex(order.size());
        std::vector<QString> sorted;
        for (uint32_t i = 0; i < order.size(); ++i) {
            newIndex[order[i]] = i;
            sorted.push_back(q_.terms[order[i]]);
        }
        q_.terms = std::move(sorted);
        for (XQueryNode& node : q_.nodes)
            if (node.kind == XQueryNode::TERM) node.term = newIndex[node.term];
    }

    const QString& t_;
    bool matchCase_;
    XQuery& q_;
    std::vector<Token> toks_;
    size_t k_ = 0;
    int firstMinus_ = -1;
    QHash<QString, uint32_t> index_;
};

} // namespace

bool XQuery::parse(const QString& text, bool matchCase) {
    terms.clear();
    nodes.clear();
    root = 0;
    hasNear = false;
    sError_.clear();
    errorPos_ = 0;
    Parser p(text, matchCase, *this);
    if (p.run()) return true;
    sError_ = p.error;
    // Characters, not UTF-16 units: what a user counts in the field.
    errorPos_ = int(text.left(std::max(0, p.errorIndex)).toUcs4().size()) + 1;
    terms.clear();
    nodes.clear();
    return false;
}

bool XQuery::value(uint32_t node, const std::vector<char>& present) const {
    const XQueryNode& n = nodes[node];
    switch (n.kind) {
    case XQueryNode::TERM: return present[n.term] != 0;
    case XQueryNode::NOT: return !value(n.kids[0], present);
    case XQueryNode::AND:
        for (uint32_t k : n.kids)
            if (!value(k, present)) return false;
        return true;
    case XQueryNode::OR:
        for (uint32_t k : n.kids)
            if (value(k, present)) return true;
        return false;
    case XQueryNode::NEAR:
        // Without positions: both sides must at least be there.
        return value(n.kids[0], present) && value(n.kids[1], present);
    }
    return false;
}

QString XQuery::toString(uint32_t node) const {
    if (nodes.empty()) return QString();
    const XQueryNode& n = nodes[node];
    if (n.kind == XQueryNode::TERM) return QLatin1Char('\'') + terms[n.term] + QLatin1Char('\'');
    QString s(QLatin1Char('('));
    switch (n.kind) {
    case XQueryNode::AND: s += QLatin1String("AND"); break;
    case XQueryNode::OR: s += QLatin1String("OR"); break;
    case XQueryNode::NOT: s += QLatin1String("NOT"); break;
    case XQueryNode::NEAR: s += QStringLiteral("NEAR/%1").arg(n.distance); break;
    default: break;
    }
    for (uint32_t k : n.kids) s += QLatin1Char(' ') + toString(k);
    return s + QLatin1Char(')');
}

} // namespace find
} // namespace tav

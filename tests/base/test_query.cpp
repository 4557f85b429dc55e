// The query language against a reference written the slow, obvious way:
// decode the text, cut it into units, find every occurrence of every term at
// every character, evaluate the expression tree per unit.
#include "base/find/XContentFilter.h"
#include "base/io/XLineReaderDA.h"
#include "common/TestEnv.h"

#include <QtTest>
#include <random>
#include <set>

using tav::find::XContentFilter;
using tav::find::XRam;

namespace {
using Marks = QList<QPair<qint64, qint64>>;

constexpr uint32_t kFile = XContentFilter::SCOPE_FILE;
constexpr uint32_t kPara = XContentFilter::SCOPE_PARAGRAPH;
constexpr uint32_t kSent = XContentFilter::SCOPE_SENTENCE;
enum Flags { WHOLE = 1, CASE = 2 };

Marks find(const QString& query, uint32_t scope, const QByteArray& text, int flags = 0, bool regEx = false,
           XContentFilter::Engine engine = XContentFilter::ENGINE_AUTO) {
    XContentFilter f;
    f.setScope(scope);
    f.setWholeWords(flags & WHOLE);
    f.setMatchCase(flags & CASE);
    if (!f.createSymbols(query, regEx, engine)) return {{-1, -1}};
    Marks m;
    const tav::find::XRamLayer layer = f.find(0, text);
    for (const XRam& r : layer.marks()) m << qMakePair(qint64(r.pos()), qint64(r.len()));
    return m;
}

QByteArrayList texts(const QByteArray& text, const Marks& m) {
    QByteArrayList out;
    for (const auto& p : m) out << text.mid(int(p.first), int(p.second));
    return out;
}

// ---- the reference ---------------------------------------------------------------

struct Char {
    int pos, len;
    int cp;   // -1: a byte that is no UTF-8
};

// Every character with its bytes: the longest prefix (up to 4 bytes) that
// decodes to one code point and encodes back to the same bytes.
std::vector<Char> decode(const QByteArray& t) {
    std::vector<Char> out;
    int p = 0;
    while (p < t.size()) {
        Char c{p, 1, -1};
        for (int len = 1; len <= 4 && p + len <= t.size(); ++len) {
            const QByteArray b = t.mid(p, len);
            const QString s = QString::fromUtf8(b);
            const QVector<uint> u = s.toUcs4();
            if (u.size() == 1 && u[0] != 0xFFFD && s.toUtf8() == b) {
                c = {p, len, int(u[0])};
                break;
            }
        }
        out.push_back(c);
        p += c.len;
    }
    return out;
}

bool isWordCp(int cp) { return cp >= 0 && (cp == '_' || QChar::isLetterOrNumber(uint(cp))); }
bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v'; }

std::vector<std::pair<int, int>> units(const QByteArray& t, uint32_t scope) {
    std::vector<std::pair<int, int>> out;
    if (scope == kFile) {
        if (!t.isEmpty()) out.push_back({0, t.size()});
        return out;
    }
    // Lines, then runs of lines that are not blank.
    std::vector<std::pair<int, int>> lines;
    for (int s = 0; s <= t.size();) {
        int e = t.indexOf('\n', s);
        if (e < 0) e = t.size();
        lines.push_back({s, e});
        s = e + 1;
    }
    std::vector<std::pair<int, int>> paras;
    int start = -1, end = -1;
    for (auto l : lines) {
        bool blank = true;
        for (int i = l.first; i < l.second; ++i) blank = blank && isSpace(t[i]);
        if (blank) {
            if (start >= 0) paras.push_back({start, end});
            start = -1;
        } else {
            if (start < 0) start = l.first;
            end = l.second;
        }
    }
    if (start >= 0) paras.push_back({start, end});
    if (scope == kPara) return paras;
    for (auto p : paras) {
        int i = p.first;
        for (;;) {
            while (i < p.second && isSpace(t[i])) ++i;
            if (i >= p.second) break;
            int s = i, e = p.second;
            for (int q = i; q < p.second; ++q) {
                if ((t[q] == '.' || t[q] == '!' || t[q] == '?') && (q + 1 >= p.second || isSpace(t[q + 1]))) {
                    e = q + 1;
                    break;
                }
            }
            out.push_back({s, e});
            i = e;
        }
    }
    return out;
}

// An expression as a tree, printed for the engine and evaluated here.
struct Expr {
    enum Kind { TERM, AND, OR, NOT, NEAR } kind = TERM;
    QString term;
    int distance = 10;
    bool defaultDistance = true;
    std::vector<Expr> kids;
};

struct Occ {
    int s, e, term;
    bool operator<(const Occ& o) const { return std::tie(s, e, term) < std::tie(o.s, o.e, o.term); }
};

struct Reference {
    QByteArray t;
    std::vector<Char> chars;
    std::vector<QString> terms;   // index = term number
    int flags = 0;

    int termIndex(const QString& s) {
        for (size_t i = 0; i < terms.size(); ++i)
            if ((flags & CASE) ? terms[i] == s : terms[i].toCaseFolded() == s.toCaseFolded()) return int(i);
        terms.push_back(s);
        return int(terms.size() - 1);
    }

    // Character index that starts at byte p, or -1.
    int charAt(int p) const {
        for (size_t i = 0; i < chars.size(); ++i)
            if (chars[i].pos == p) return int(i);
        return -1;
    }

    std::vector<Occ> occurrences(const QString& term, int b, int e) {
        std::vector<Occ> out;
        const QVector<uint> want = term.toUcs4();
        for (size_t i = 0; i < chars.size(); ++i) {
            if (chars[i].pos < b) continue;
            size_t k = 0;
            int end = chars[i].pos;
            for (; k < size_t(want.size()) && i + k < chars.size(); ++k) {
                const int cp = chars[i + k].cp;
                if (cp < 0) break;
                const bool same = (flags & CASE) ? uint(cp) == want[int(k)]
                                                 : QChar::toCaseFolded(uint(cp)) == QChar::toCaseFolded(want[int(k)]);
                if (!same) break;
                end = chars[i + k].pos + chars[i + k].len;
            }
            if (k < size_t(want.size()) || end > e) continue;
            if (flags & WHOLE) {
                if (i > 0 && isWordCp(chars[i - 1].cp)) continue;
                if (i + k < chars.size() && isWordCp(chars[i + k].cp)) continue;
            }
            out.push_back({chars[i].pos, end, termIndex(term)});
        }
        return out;
    }

    // Words wholly inside [from, to).
    int wordsBetween(int from, int to) const {
        int n = 0;
        for (size_t i = 0; i < chars.size(); ++i) {
            if (!isWordCp(chars[i].cp) || (i > 0 && isWordCp(chars[i - 1].cp))) continue;
            size_t j = i;
            while (j + 1 < chars.size() && isWordCp(chars[j + 1].cp)) ++j;
            if (chars[i].pos >= from && chars[j].pos + chars[j].len <= to) ++n;
        }
        return n;
    }

    bool eval(const Expr& x, int b, int e, std::set<Occ>& marks) {
        switch (x.kind) {
        case Expr::TERM: {
            const std::vector<Occ> o = occurrences(x.term, b, e);
            marks.insert(o.begin(), o.end());
            return !o.empty();
        }
        case Expr::NOT: {
            std::set<Occ> none;
            return !eval(x.kids[0], b, e, none);
        }
        case Expr::AND: {
            std::set<Occ> m;
            for (const Expr& k : x.kids)
                if (!eval(k, b, e, m)) return false;
            marks.insert(m.begin(), m.end());
            return true;
        }
        case Expr::OR: {
            bool any = false;
            for (const Expr& k : x.kids) any = eval(k, b, e, marks) || any;
            return any;
        }
        case Expr::NEAR: {
            std::set<Occ> a, c, m;
            if (!eval(x.kids[0], b, e, a) || !eval(x.kids[1], b, e, c)) return false;
            for (const Occ& p : a)
                for (const Occ& q : c) {
                    const bool ok = (p.e <= q.s && wordsBetween(p.e, q.s) <= x.distance) ||
                                    (q.e <= p.s && wordsBetween(q.e, p.s) <= x.distance);
                    if (ok) m.insert({p, q});
                }
            marks.insert(m.begin(), m.end());
            return !m.empty();
        }
        }
        return false;
    }

    Marks run(const Expr& x, uint32_t scope) {
        Marks out;
        for (auto u : units(t, scope)) {
            std::set<Occ> m;
            if (!eval(x, u.first, u.second, m)) continue;
            // Leftmost first; at one start the longer term.
            std::vector<Occ> v(m.begin(), m.end());
            std::sort(v.begin(), v.end(), [&](const Occ& p, const Occ& q) {
                if (p.s != q.s) return p.s < q.s;
                return terms[size_t(p.term)].toUcs4().size() > terms[size_t(q.term)].toUcs4().size();
            });
            int lastEnd = -1;
            for (const Occ& o : v) {
                if (o.s < lastEnd) continue;
                out << qMakePair(qint64(o.s), qint64(o.e - o.s));
                lastEnd = o.e;
            }
        }
        return out;
    }
};

// ---- random expressions and texts ------------------------------------------------

const QStringList kWords = {"alpha", "beta", "gamma", "delta", "Alpha", "BETA", "größe", "GRÖẞE", "σοφία", "ΣΟΦΊΑ",
                            "foo", "bar", "foobar", "x_1", "a1", "Über", "\xE2\x84\xAA" "elvin", "kelvin", "the", "a"};
const QStringList kTerms = {"alpha", "beta", "gamma", "delta", "größe", "σοφία", "foo", "bar", "x", "a", "kelvin",
                            "über", "the", "ALPHA", "Beta", "1"};
const QStringList kPhrases = {"alpha beta", "beta. gamma", "foo bar", "the a", "gamma delta"};

QString quoted(const QString& s) { return QLatin1Char('"') + s + QLatin1Char('"'); }

QString print(const Expr& x, std::mt19937& rnd) {
    auto child = [&](const Expr& k) {
        const QString s = print(k, rnd);
        return k.kind == Expr::TERM || k.kind == Expr::NOT ? s : QLatin1Char('(') + s + QLatin1Char(')');
    };
    switch (x.kind) {
    case Expr::TERM: return x.term.contains(QLatin1Char(' ')) || x.term.contains(QLatin1Char('.')) ? quoted(x.term) : x.term;
    case Expr::NOT: return QLatin1Char('-') + child(x.kids[0]);
    case Expr::AND: {
        QStringList parts;
        for (const Expr& k : x.kids) parts << child(k);
        return parts.join(rnd() % 3 ? QStringLiteral(" ") : QStringLiteral(" AND "));
    }
    case Expr::OR: {
        QStringList parts;
        for (const Expr& k : x.kids) parts << child(k);
        return parts.join(rnd() % 2 ? QStringLiteral(" | ") : QStringLiteral(" OR "));
    }
    case Expr::NEAR:
        return child(x.kids[0]) + (x.defaultDistance ? QStringLiteral(" NEAR ") : QStringLiteral(" NEAR/%1 ").arg(x.distance)) +
               child(x.kids[1]);
    }
    return QString();
}

Expr term(std::mt19937& rnd) {
    Expr x;
    x.term = rnd() % 6 == 0 ? kPhrases[int(rnd() % kPhrases.size())] : kTerms[int(rnd() % kTerms.size())];
    return x;
}

Expr randomExpr(std::mt19937& rnd, int depth) {
    const unsigned r = depth <= 0 ? 0 : rnd() % 10;
    Expr x;
    if (r < 3) return term(rnd);
    if (r < 5) {
        x.kind = Expr::AND;
    } else if (r < 7) {
        x.kind = Expr::OR;
    } else {
        x.kind = Expr::NEAR;
        x.defaultDistance = rnd() % 4 == 0;
        x.distance = x.defaultDistance ? 10 : int(rnd() % 5);
        for (int i = 0; i < 2; ++i) {
            Expr k = depth > 1 && rnd() % 3 == 0 ? randomExpr(rnd, depth - 2) : term(rnd);
            if (k.kind == Expr::NOT) k = term(rnd);
            x.kids.push_back(k);
        }
        return x;
    }
    const int n = 2 + int(rnd() % 2);
    for (int i = 0; i < n; ++i) {
        Expr k = randomExpr(rnd, depth - 1);
        if (rnd() % 4 == 0) {
            Expr neg;
            neg.kind = Expr::NOT;
            neg.kids.push_back(k);
            k = neg;
        }
        x.kids.push_back(k);
    }
    return x;
}

QByteArray randomText(std::mt19937& rnd) {
    const QByteArrayList seps = {" ", " ", " ", ". ", "\n", "\n\n", ", ", "_", "", "! ", "-", "\n \n"};
    QByteArray t;
    const int n = 20 + int(rnd() % 80);
    for (int i = 0; i < n; ++i) {
        t += kWords[int(rnd() % kWords.size())].toUtf8();
        if (rnd() % 40 == 0) t += "\xff";
        t += seps[int(rnd() % seps.size())];
    }
    return t;
}
} // namespace

class TestQuery : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void operatorsGroupsAndMarks() {
        const QByteArray t = "timeout in retry loop.\n\ndeadline then a b c d e f retry.\n\nretry only; static timeout.\n";
        // OR: the marks are the branches that hold.
        QCOMPARE(texts(t, find(QStringLiteral("timeout | deadline"), kPara, t)), (QByteArrayList{"timeout", "deadline", "timeout"}));
        QCOMPARE(find(QStringLiteral("timeout OR deadline"), kPara, t), find(QStringLiteral("deadline|timeout"), kPara, t));
        QCOMPARE(texts(t, find(QStringLiteral("(timeout | nothing) retry"), kPara, t)),
                 (QByteArrayList{"timeout", "retry", "retry", "timeout"}));
        // AND binds tighter than OR; AND may be written.
        QCOMPARE(texts(t, find(QStringLiteral("deadline | static AND retry"), kPara, t)),
                 (QByteArrayList{"deadline", "retry", "static"}));
        QCOMPARE(find(QStringLiteral("static AND retry"), kPara, t), find(QStringLiteral("static retry"), kPara, t));
        // An excluded group.
        QCOMPARE(texts(t, find(QStringLiteral("retry -(static | deadline)"), kPara, t)), (QByteArrayList{"retry"}));
        // NEAR in either order, counted in words between; plain NEAR allows 10.
        QCOMPARE(texts(t, find(QStringLiteral("retry NEAR/1 timeout"), kPara, t)), (QByteArrayList{"timeout", "retry"}));
        QCOMPARE(texts(t, find(QStringLiteral("timeout NEAR/1 retry"), kPara, t)), (QByteArrayList{"timeout", "retry"}));
        QCOMPARE(find(QStringLiteral("timeout NEAR/0 retry"), kPara, t), Marks());
        QCOMPARE(find(QStringLiteral("deadline NEAR/6 retry"), kPara, t).size(), 0);
        QCOMPARE(texts(t, find(QStringLiteral("deadline NEAR/7 retry"), kPara, t)), (QByteArrayList{"deadline", "retry"}));
        QCOMPARE(find(QStringLiteral("deadline NEAR retry"), kPara, t).size(), 2);
        // A group on one side; only the occurrences with a partner are marked.
        QCOMPARE(texts(t, find(QStringLiteral("(timeout | deadline) NEAR/5 retry -static"), kPara, t)),
                 (QByteArrayList{"timeout", "retry"}));
        const QByteArray u = "x retry x x x x x x x x x x x x timeout retry";
        QCOMPARE(texts(u, find(QStringLiteral("timeout NEAR/2 retry"), kFile, u)), (QByteArrayList{"timeout", "retry"}));
        QCOMPARE(find(QStringLiteral("timeout NEAR/2 retry"), kFile, u).last().first, qint64(u.lastIndexOf("retry")));
        // A word shared by two occurrences has nothing between them; a term near itself needs two occurrences.
        QCOMPARE(find(QStringLiteral("foo NEAR/0 bar"), kFile, QByteArray("foobar")).size(), 2);
        QCOMPARE(find(QStringLiteral("x NEAR/0 x"), kFile, QByteArray("x y")), Marks());
        QCOMPARE(find(QStringLiteral("x NEAR/1 x"), kFile, QByteArray("x y x")).size(), 2);
        // Escaped quote, bar and parentheses inside a phrase or a word.
        const QByteArray c = "call f(a|b) and say \"hi\"";
        QCOMPARE(texts(c, find(QStringLiteral("\"f\\(a\\|b\\)\""), kFile, c)), (QByteArrayList{"f(a|b)"}));
        QCOMPARE(texts(c, find(QStringLiteral("f\\(a\\|b\\)"), kFile, c)), (QByteArrayList{"f(a|b)"}));
        QCOMPARE(texts(c, find(QStringLiteral("\"say \\\"hi\\\"\""), kFile, c)), (QByteArrayList{"say \"hi\""}));
        // What was valid before means the same: all of, phrases, exclusions, a dash inside a word.
        const QByteArray old = "well-known value -x here\n\nvalue alone";
        QCOMPARE(texts(old, find(QStringLiteral("well-known value"), kPara, old)), (QByteArrayList{"well-known", "value"}));
        QCOMPARE(texts(old, find(QStringLiteral("value -\"well-known\""), kPara, old)), (QByteArrayList{"value"}));
        QCOMPARE(texts(old, find(QStringLiteral("- value"), kPara, old)), (QByteArrayList{"-", "value", "-"}));
        // Upper-case operator words only; "or" is a term.
        const QByteArray o = "retry or not";
        QCOMPARE(texts(o, find(QStringLiteral("retry or"), kFile, o)), (QByteArrayList{"retry", "or"}));
    }

    void parseErrorsSayWhereAndWhy() {
        struct Case {
            const char* text;
            int pos;
            const char* why;
        };
        const Case cases[] = {
            {"(a | b", 1, "unbalanced parenthesis"},
            {"a b)", 4, "unbalanced parenthesis"},
            {"a (b (c)", 3, "unbalanced parenthesis"},
            {"a \"b c", 3, "unbalanced quote"},
            {"NEAR b", 1, "NEAR needs a term on both sides"},
            {"a NEAR/3", 3, "NEAR needs a term on both sides"},
            {"a NEAR/3 -b", 3, "NEAR needs a term on both sides"},
            {"-a NEAR b", 4, "NEAR needs a term on both sides"},
            {"a NEAR/x b", 3, "NEAR/n needs a number"},
            {"a |", 3, "OR needs a term on both sides"},
            {"| a", 1, "OR needs a term on both sides"},
            {"a OR OR b", 3, "OR needs a term on both sides"},
            {"a AND", 3, "AND needs a term on both sides"},
            {"a ()", 3, "empty parentheses"},
            {"-a -\"b c\"", 1, "nothing to find: only excluded terms"},
            {"a | -b", 5, "nothing to find: only excluded terms"},
            {"-(a b)", 1, "nothing to find: only excluded terms"},
            {"   ", 1, "nothing to find"},
            {"ä ö (ü", 5, "unbalanced parenthesis"},   // characters, not bytes
        };
        for (const Case& c : cases) {
            XContentFilter f;
            const QString text = QString::fromUtf8(c.text);
            QVERIFY2(!f.createSymbols(text, false), c.text);
            QVERIFY2(f.errorText().startsWith(QLatin1String(c.why)), qPrintable(text + QStringLiteral(" -> ") + f.errorText()));
            QCOMPARE(f.errorPosition(), c.pos);
            QCOMPARE(f.errorMessage(), QStringLiteral("character %1: %2").arg(c.pos).arg(f.errorText()));
        }
        // A regular expression says where as well (a character, not a byte).
        XContentFilter f;
        QVERIFY(!f.createSymbols(QStringLiteral("äb(c"), true));
        QCOMPARE(f.errorPosition(), 5);
        QVERIFY(f.errorText().contains(QStringLiteral("parenthesis")));
        QVERIFY(f.createSymbols(QStringLiteral("a (b | c) -d NEAR e"), false) == false);   // -d NEAR: refused
        QVERIFY(f.createSymbols(QStringLiteral("a (b | c) -(d NEAR e)"), false));
    }

    void switchesWholeWordsAndMatchCase() {
        const QByteArray t = "Über über_x Grüber über. 3über über3 ÜBER-all Return return\n";
        // Whole words: letters of any script, digits and '_' join a word; '-' and '.' do not.
        QCOMPARE(texts(t, find(QStringLiteral("über"), kFile, t, WHOLE)), (QByteArrayList{"Über", "über", "ÜBER"}));
        QCOMPARE(find(QStringLiteral("über"), kFile, t).size(), 7);
        QCOMPARE(texts(t, find(QStringLiteral("über"), kFile, t, WHOLE | CASE)), (QByteArrayList{"über"}));
        QCOMPARE(texts(t, find(QStringLiteral("Return"), kFile, t, CASE)), (QByteArrayList{"Return"}));
        QCOMPARE(find(QStringLiteral("return -Return"), kFile, t, CASE), Marks());
        QCOMPARE(find(QStringLiteral("return -RETURN"), kFile, t, CASE).size(), 1);
        // Regular expressions: case is ignored with Unicode folding unless switched on or (?-i).
        const QByteArray r = "Talvo talvo Съешь СЪЕШЬ \xE2\x84\xAA";
        QCOMPARE(find(QStringLiteral("talvo"), kFile, r, 0, true).size(), 2);
        QCOMPARE(find(QStringLiteral("talvo"), kFile, r, CASE, true).size(), 1);
        QCOMPARE(find(QStringLiteral("(?-i)talvo"), kFile, r, 0, true).size(), 1);
        QCOMPARE(texts(r, find(QStringLiteral("[а-я]+ь"), kFile, r, 0, true)), (QByteArrayList{"Съешь", "СЪЕШЬ"}));
        QCOMPARE(texts(r, find(QStringLiteral("[а-я]+ь"), kFile, r, CASE, true)), (QByteArrayList{"ъешь"}));
        QCOMPARE(find(QStringLiteral("t.lvo|k"), kFile, r, 0, true).size(), 3);   // the Kelvin sign is a k
        // Whole words with a regular expression: a match must not touch a letter, digit or '_'.
        QCOMPARE(texts(t, find(QStringLiteral("[üÜ]ber"), kFile, t, WHOLE, true)), (QByteArrayList{"Über", "über", "ÜBER"}));
        QCOMPARE(texts(t, find(QStringLiteral("(*UTF)r\\w+"), kFile, t, WHOLE, true)), (QByteArrayList{"Return", "return"}));
        QCOMPARE(texts(t, find(QStringLiteral("über"), kFile, t, WHOLE, true)), (QByteArrayList{"Über", "über", "ÜBER"}));
        // Both engines agree with the switches on.
        for (const QString& q : {QStringLiteral("über"), QStringLiteral("[üÜ]ber\\S*"), QStringLiteral("t.lvo|k"), QStringLiteral("r\\w+")})
            for (int flags : {0, 1, 2, 3})
                for (const QByteArray& x : {t, r})
                    QCOMPARE(find(q, kFile, x, flags, true), find(q, kFile, x, flags, true, XContentFilter::ENGINE_PCRE2));
    }

    // A few hundred random expressions, each on several random texts, with both
    // switches and the three scopes: the engine (both ways of finding) gives
    // exactly the reference's marks.
    void randomExpressionsMatchTheReference() {
        std::mt19937 rnd(20240611);
        QList<QByteArray> textsIn;
        for (int i = 0; i < 6; ++i) textsIn << randomText(rnd);
        int compared = 0, withMarks = 0, refused = 0;
        for (int round = 0; round < 300; ++round) {
            const Expr x = randomExpr(rnd, 3);
            const QString q = print(x, rnd);
            const int flags = int(rnd() % 4);
            const uint32_t scope = uint32_t(rnd() % 3);
            XContentFilter f;
            f.setScope(scope);
            f.setWholeWords(flags & WHOLE);
            f.setMatchCase(flags & CASE);
            Reference empty;
            empty.flags = flags;
            std::set<Occ> none;
            const bool trueForNothing = empty.eval(x, 0, 0, none);
            if (!f.createSymbols(q, false)) {
                // Only an expression that holds where nothing is found is refused.
                QVERIFY2(trueForNothing, qPrintable(q + QStringLiteral(": ") + f.errorMessage()));
                QVERIFY(f.errorText().startsWith(QStringLiteral("nothing to find")));
                ++refused;
                continue;
            }
            QVERIFY2(!trueForNothing, qPrintable(q));
            for (const QByteArray& t : textsIn) {
                Reference ref;
                ref.t = t;
                ref.chars = decode(t);
                ref.flags = flags;
                const Marks expected = ref.run(x, scope);
                const Marks got = find(q, scope, t, flags);
                if (got != expected)
                    qWarning().noquote() << "query" << q << "flags" << flags << "scope" << scope << "\n" << t << "\n"
                                         << got << "\n" << expected;
                QCOMPARE(got, expected);
                QCOMPARE(find(q, scope, t, flags, false, XContentFilter::ENGINE_PCRE2), expected);
                ++compared;
                withMarks += expected.isEmpty() ? 0 : 1;
            }
        }
        // The generator must exercise both outcomes.
        QVERIFY2(withMarks > compared / 4 && withMarks < compared, qPrintable(QStringLiteral("%1 of %2").arg(withMarks).arg(compared)));
        QVERIFY(refused > 0 && refused < 60);
    }

    // A file read in small windows: OR, NEAR and exclusion over the whole file
    // give what the whole text in memory gives (NEAR counts words across windows).
    void windowsKeepWordCountsAcrossTheirEdges() {
        tftest::TestDir d;
        QByteArray t;
        std::mt19937 rnd(5);
        for (int i = 0; i < 5000; ++i) {
            const unsigned r = rnd() % 200;
            t += r == 0 ? "needle" : r == 1 ? "thread" : r == 2 ? "pin" : "hay";
            t += rnd() % 8 == 0 ? "\n" : rnd() % 300 == 0 ? "\n\n" : " ";
        }
        const QString p = d.file(QStringLiteral("big.txt"), t);
        tav::XLineReaderDA small;
        small.setWindowSizes(4096, 1 << 20);   // paragraphs are never cut
        QVERIFY(small.openFile(p, 0x10000, true));
        QVERIFY(!small.isWhole());
        for (const QString& q : {QStringLiteral("needle NEAR/3 thread"), QStringLiteral("(needle | pin) NEAR/20 thread -nothing"),
                                 QStringLiteral("needle | thread"), QStringLiteral("needle NEAR/0 hay")}) {
            for (uint32_t scope : {kFile, kPara}) {
                XContentFilter f;
                f.setScope(scope);
                QVERIFY(f.createSymbols(q, false));
                const auto whole = f.find(0, t);
                const auto parts = f.find(0, small);
                QVERIFY(whole.size() > 0);
                QCOMPARE(parts.size(), whole.size());
                for (int i = 0; i < whole.size(); ++i) QCOMPARE(parts.marks()[size_t(i)], whole.marks()[size_t(i)]);
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestQuery)
#include "test_query.moc"

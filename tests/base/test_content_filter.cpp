#include "base/find/XByteScan.h"
#include "base/find/XContentFilter.h"
#include "base/io/XLineReaderDA.h"
#include "common/TestEnv.h"

#include <QtTest>
#include <random>

using tav::find::XContentFilter;
using tav::find::XRam;

namespace {
using Marks = QList<QPair<qint64, qint64>>;

Marks marksOf(const tav::find::XRamLayer& l) {
    Marks m;
    for (const XRam& r : l.marks()) m << qMakePair(qint64(r.pos()), qint64(r.len()));
    return m;
}

Marks find(const QString& query, bool regEx, uint32_t scope, const QByteArray& text,
           XContentFilter::Engine engine = XContentFilter::ENGINE_AUTO) {
    XContentFilter f;
    f.setScope(scope);
    if (!f.createSymbols(query, regEx, engine)) return {{-1, -1}};
    return marksOf(f.find(0, text));
}

// The texts the marks cover.
QByteArrayList texts(const QByteArray& text, const Marks& m) {
    QByteArrayList out;
    for (const auto& p : m) out << text.mid(int(p.first), int(p.second));
    return out;
}

constexpr uint32_t kFile = XContentFilter::SCOPE_FILE;
constexpr uint32_t kPara = XContentFilter::SCOPE_PARAGRAPH;
constexpr uint32_t kSent = XContentFilter::SCOPE_SENTENCE;
}

class TestContentFilter : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void simpleTermsPhrasesAndExclusion() {
        const QByteArray t = "alpha beta gamma\nBeta ALPHA\n\nalpha only here\n\ngamma delta alpha beta\n";
        // Every positive term must be in the unit; the marks are all their occurrences.
        Marks m = find(QStringLiteral("alpha beta"), false, kPara, t);
        QCOMPARE(texts(t, m), (QByteArrayList{"alpha", "beta", "Beta", "ALPHA", "alpha", "beta"}));
        QCOMPARE(m.first(), qMakePair(qint64(0), qint64(5)));
        QCOMPARE(m.last(), qMakePair(qint64(t.lastIndexOf("beta")), qint64(4)));
        // An excluded term drops the units that hold it.
        QCOMPARE(texts(t, find(QStringLiteral("alpha -gamma"), false, kPara, t)), (QByteArrayList{"alpha"}));
        QCOMPARE(find(QStringLiteral("alpha -gamma"), false, kFile, t), Marks());   // the file holds gamma
        QCOMPARE(find(QStringLiteral("alpha -zeta"), false, kFile, t).size(), 4);
        // A phrase keeps its blank; a negated phrase works as well.
        QCOMPARE(texts(t, find(QStringLiteral("\"BETA alpha\""), false, kFile, t)), (QByteArrayList{"Beta ALPHA"}));
        QCOMPARE(find(QStringLiteral("alpha -\"only here\""), false, kPara, t).size(), 3);
        // The longer of two terms wins where both start; marks never overlap.
        const QByteArray u = "foobar foo aaaa";
        QCOMPARE(texts(u, find(QStringLiteral("foo foobar"), false, kFile, u)), (QByteArrayList{"foobar", "foo"}));
        QCOMPARE(find(QStringLiteral("aa"), false, kFile, u), (Marks{{11, 2}, {13, 2}}));
        QCOMPARE(texts(u, find(QStringLiteral("oba bar"), false, kFile, u)), (QByteArrayList{"oba"}));
        // Texts that cannot be used.
        XContentFilter f;
        QVERIFY(!f.createSymbols(QStringLiteral("alpha \"beta"), false));
        QVERIFY(!f.isValid());
        QVERIFY(f.errorText().contains(QStringLiteral("quote")));
        QVERIFY(f.find(0, t).isEmpty());
        QVERIFY(!f.createSymbols(QStringLiteral("-alpha"), false));
        QVERIFY(!f.createSymbols(QStringLiteral("   "), false));
        QVERIFY(f.createSymbols(QStringLiteral("- x"), false));   // a lone dash is a term
        QCOMPARE(f.toString(false), QStringLiteral("'- x' (File)"));
    }

    void caseFoldingCoversNonAsciiLetters() {
        const QByteArray t = "GRÖẞE, größe; ÄRGER ärger; ΣΟΦΊΑ σοφία ὀδυσσεύς ΟΔΥΣΣΕΥΣ; \xE2\x84\xAA" "elvin kelvin";
        QCOMPARE(texts(t, find(QStringLiteral("größe"), false, kFile, t)), (QByteArrayList{"GRÖẞE", "größe"}));
        QCOMPARE(texts(t, find(QStringLiteral("Ärger"), false, kFile, t)), (QByteArrayList{"ÄRGER", "ärger"}));
        QCOMPARE(find(QStringLiteral("σοφία"), false, kFile, t).size(), 2);
        // Final sigma, capital and small sigma are one letter under folding.
        QCOMPARE(texts(t, find(QStringLiteral("δυσσευσ"), false, kFile, t)), (QByteArrayList{"δυσσεύς", "ΔΥΣΣΕΥΣ"}).mid(1));
        // The Kelvin sign is a k: the mark covers its three bytes.
        const Marks k = find(QStringLiteral("KELVIN"), false, kFile, t);
        QCOMPARE(k.size(), 2);
        QCOMPARE(k.first().second, qint64(8));
        QCOMPARE(k.last().second, qint64(6));
        // Regular expressions ignore case the same way unless they say (?-i).
        QCOMPARE(find(QStringLiteral("ärger"), true, kFile, t).size(), 2);
        QCOMPARE(find(QStringLiteral("(?-i)ärger"), true, kFile, t).size(), 1);
        QCOMPARE(find(QStringLiteral("ÄRG(?-i)er"), true, kFile, t).size(), 1);
    }

    void scopesDeriveParagraphsAndSentences() {
        const QByteArray t = "Cats sleep. Dogs bark!  Cats eat fish?\nDogs run.\n \t\nCats and dogs.\r\n\r\nDogs only.";
        // Paragraph 1 has cats and dogs, paragraph 2 too, paragraph 3 only dogs.
        QCOMPARE(find(QStringLiteral("cats dogs"), false, kPara, t).size(), 4 + 2);
        // Sentences: only "Cats and dogs." holds both.
        QCOMPARE(texts(t, find(QStringLiteral("cats dogs"), false, kSent, t)), (QByteArrayList{"Cats", "dogs"}));
        QCOMPARE(texts(t, find(QStringLiteral("cats fish"), false, kSent, t)), (QByteArrayList{"Cats", "fish"}));
        // A phrase across a sentence end is not inside one sentence.
        QCOMPARE(find(QStringLiteral("\"bark!  cats\""), false, kSent, t), Marks());
        QCOMPARE(find(QStringLiteral("\"bark!  cats\""), false, kPara, t).size(), 1);
        // Regular expressions see each unit as their subject: ^ and $ at its lines,
        // and no match runs from one unit into the next.
        QCOMPARE(texts(t, find(QStringLiteral("^\\w+"), true, kPara, t)), (QByteArrayList{"Cats", "Dogs", "Cats", "Dogs"}));
        QCOMPARE(texts(t, find(QStringLiteral("\\w+[.!?]$"), true, kSent, t)),
                 (QByteArrayList{"sleep.", "bark!", "fish?", "run.", "dogs.", "only."}));
        QCOMPARE(texts(t, find(QStringLiteral("fish\\?\\s+Dogs"), true, kPara, t)), (QByteArrayList{"fish?\nDogs"}));
        QCOMPARE(find(QStringLiteral("run\\.\\s+Cats"), true, kPara, t), Marks());
        QCOMPARE(find(QStringLiteral("run\\.\\s+\\S+\\s+Cats"), true, kFile, t).size(), 0);
        QCOMPARE(find(QStringLiteral("run\\.\\s+Cats"), true, kFile, t).size(), 1);
    }

    void regularExpressionsMarkBytesAndSurviveBadInput() {
        const QByteArray t = "errno = 42; IOException and RuntimeException\n\xff\xfe bad \xc3 bytes, then errno again\n";
        const Marks m = find(QStringLiteral("(?-i)[A-Z][a-z]+Exception|errno"), true, kFile, t);
        QCOMPARE(texts(t, m), (QByteArrayList{"errno", "RuntimeException", "errno"}));   // "IOException" is no [A-Z][a-z]+
        QCOMPARE(m.last().first, qint64(t.lastIndexOf("errno")));
        // '.' steps over invalid bytes without stopping the search.
        QCOMPARE(texts(t, find(QStringLiteral("b.d|t.en"), true, kFile, t)), (QByteArrayList{"bad", "then"}));
        QCOMPARE(texts(t, find(QStringLiteral("\\d+"), true, kFile, t)), (QByteArrayList{"42"}));
        // Empty matches make no marks.
        QCOMPARE(texts(t, find(QStringLiteral("\\d*"), true, kFile, t)), (QByteArrayList{"42"}));
        QCOMPARE(texts(t, find(QStringLiteral("x*|4+"), true, kFile, t)), (QByteArrayList{"x", "x"}));   // x* wins, empty, at '4' 
        // Look-behind and back references (no fast finder for these).
        QCOMPARE(texts(t, find(QStringLiteral("(?<=Runtime)\\w+"), true, kFile, t)), (QByteArrayList{"Exception"}));
        QCOMPARE(texts(t, find(QStringLiteral("(e)(r)\\2"), true, kFile, t)), (QByteArrayList{"err", "err"}));
        // A plain word as expression: found like a term, case ignored.
        QCOMPARE(find(QStringLiteral("Errno"), true, kFile, t).size(), 2);
        QCOMPARE(find(QStringLiteral("errno"), true, kFile, t).size(), 2);
        XContentFilter f;
        QVERIFY(!f.createSymbols(QStringLiteral("([a-z]"), true));
        QVERIFY(f.errorText().contains(QStringLiteral("parenthesis")));
        QCOMPARE(f.errorPosition(), 7);
        QVERIFY(!f.createSymbols(QString(), true));
        QVERIFY(f.createSymbols(QStringLiteral("a|b"), true));
        QVERIFY(f.toString(true).contains(QStringLiteral("regEx:true")));
    }

    void bothEnginesGiveIdenticalMarks() {
        // A shared set of inputs: words, phrases, Unicode, CRLF, blank lines, invalid bytes.
        std::mt19937 rnd(7);
        const QByteArrayList words = {"return", "Return", "value", "errno", "IOException", "the", "a", "aa", "größe", "GRÖẞE",
                                      "σοφία", "kelvin", "\xE2\x84\xAA" "elvin", "end.", "Why?", "\xff", "\xc3", "ẞ", "  ", "ъ", "Ъ", "ᲆ", "слово"};
        QByteArrayList inputs;
        for (int n = 0; n < 12; ++n) {
            QByteArray t;
            const int len = 50 + int(rnd() % 400);
            for (int i = 0; i < len; ++i) {
                const QByteArray& w = words[int(rnd() % words.size())];
                if (n % 2 == 0 && (w == "\xff" || w == "\xc3")) continue;   // half the inputs are valid UTF-8
                t += w;
                const unsigned sep = rnd() % 12;
                t += sep == 0 ? "\n" : sep == 1 ? "\r\n" : sep == 2 ? "\n\n" : sep == 3 ? ". " : sep == 4 ? "\n \n" : " ";
            }
            inputs << t;
        }
        const QStringList simple = {"return", "aa", "a", "return value", "\"return value\"", "errno -value", "größe",
                                    "kelvin", "σοφία a", "\"end. why?\"", "the -\"the the\"", "a aa", "ẞ"};
        const QStringList regex = {"[A-Z][a-z]+Exception|errno", "^\\w+", "\\w+$", "(?i)kelvin", "(?-i)r.t", "r.t", "K.L", "(?-i)[A-Z]\\w+", "a+", "a*?b|a",
                                   "[^a ]{3}", "\\bthe\\b", "(?<=the )\\w+", "(a)\\1", "e\\s+\\S", "(?i)GRÖSSE|größe", ".",
                                   "\\.\\s", "\\S+\\?$", "\\Aa", "value(?= errno)", "errno", "return value", "größe", "aa",
                                   "[ᲆ]", "[ъ]", "[а-я]+", "Ъ\\s"};
        int compared = 0, withMarks = 0;
        for (uint32_t scope : {kFile, kPara, kSent}) {
            for (const QByteArray& t : inputs) {
                for (bool re : {false, true}) {
                    for (const QString& q : re ? regex : simple) {
                        const Marks a = find(q, re, scope, t, XContentFilter::ENGINE_AUTO);
                        const Marks b = find(q, re, scope, t, XContentFilter::ENGINE_PCRE2);
                        if (a != b) qWarning() << "differs:" << q << "regEx" << re << "scope" << scope << "\n" << t;
                        QCOMPARE(a, b);
                        ++compared;
                        withMarks += a.isEmpty() ? 0 : 1;
                    }
                }
            }
        }
        QVERIFY(withMarks > compared / 2);
        // An independent count for a plain ASCII word: every non-overlapping occurrence.
        for (const QByteArray& t : inputs) {
            const QByteArray low = t.toLower();
            int n = 0;
            for (int i = low.indexOf("return"); i >= 0; i = low.indexOf("return", i + 6)) ++n;
            QCOMPARE(find(QStringLiteral("RETURN"), false, kFile, t).size(), n);
        }
        XContentFilter f;
        QVERIFY(f.createSymbols(QStringLiteral("return"), false));
        QCOMPARE(f.engineName(), XContentFilter::hasHyperscan() ? QStringLiteral("hyperscan") : QStringLiteral("pcre2"));
    }

    void fileReadInWindowsGivesTheSameMarks() {
        tftest::TestDir d;
        QByteArray t;
        std::mt19937 rnd(3);
        for (int i = 0; i < 6000; ++i) {
            t += (rnd() % 9 == 0) ? "needle and thread" : "hay stack";
            t += (rnd() % 4 == 0) ? ". " : " ";
            if (rnd() % 6 == 0) t += "\n";
            if (rnd() % 50 == 0) t += "\n\n";
        }
        const QString p = d.file(QStringLiteral("big.txt"), t);
        tav::XLineReaderDA small, whole;
        small.setWindowSize(4096);
        QVERIFY(small.openFile(p, 0x10000, true));
        QVERIFY(whole.openFile(p, 0x10000, true));
        QVERIFY(!small.isWhole() && whole.isWhole());
        for (uint32_t scope : {kFile, kPara, kSent}) {
            for (const auto& q : {qMakePair(QStringLiteral("needle thread"), false), qMakePair(QStringLiteral("stack\\.\\s+n\\w+"), true),
                                  qMakePair(QStringLiteral("hay -needle"), false), qMakePair(QStringLiteral("needle"), false),
                                  qMakePair(QStringLiteral("thread"), false), qMakePair(QStringLiteral("hay"), true)}) {
                XContentFilter f;
                f.setScope(scope);
                // A case-sensitive word takes the plain byte scan, one that ignores case the term scan.
                f.setMatchCase(q.first == QLatin1String("needle"));
                QVERIFY(f.createSymbols(q.first, q.second));
                const Marks expected = marksOf(f.find(0, t));
                QCOMPARE(marksOf(f.find(0, small)), expected);
                QCOMPARE(marksOf(f.find(0, whole)), expected);
                // Kept marks are the first ones, the others only counted; the stream gives them all.
                XContentFilter keeping(f);
                keeping.setKeepMarks(5);
                for (tav::XLineReaderDA* r : {&small, &whole}) {
                    const tav::find::XRamLayer part = keeping.find(0, *r);
                    QCOMPARE(marksOf(part), expected.mid(0, 5));
                    QCOMPARE(part.hitCount(), uint64_t(expected.size()));
                    QCOMPARE(part.isComplete(), expected.size() <= 5);
                    Marks streamed;
                    int pieces = 0;
                    const uint64_t n = keeping.forEachMark(*r, [&](const XRam* m, size_t k) {
                        ++pieces;
                        for (size_t i = 0; i < k; ++i) streamed << qMakePair(qint64(m[i].pos()), qint64(m[i].len()));
                    });
                    QCOMPARE(streamed, expected);
                    QCOMPARE(n, uint64_t(expected.size()));
                    // A file in many windows comes in many pieces (except where the file decides at its end).
                    if (r == &small && expected.size() > 100 && !(scope == kFile && !q.second && q.first.contains(QLatin1Char(' '))))
                        QVERIFY2(pieces > 1, qPrintable(q.first));
                }
                QCOMPARE(keeping.find(0, t).hitCount(), uint64_t(expected.size()));
                // Across a sentence end there is nothing inside one sentence; a file with needles has no unit without.
                const bool none = (scope == kSent && q.first.startsWith(QLatin1String("stack"))) || (scope == kFile && q.first.startsWith(QStringLiteral("hay -")));
                QCOMPARE(expected.isEmpty(), none);
            }
        }
        // Positions are 64-bit byte offsets; a mark's length is cut at 4 GiB - 1, a negative one is empty.
        const XRam far(int64_t(5) << 32, 7);
        QCOMPARE(far.end(), (int64_t(5) << 32) + 7);
        QCOMPARE(XRam(0, int64_t(1) << 33).len(), int64_t(UINT32_MAX));
        XRam m(3, 4);
        m.setLen(-2);
        QVERIFY(!m.isValid());
    }

    // The vectorised search of exact bytes against a plain one, around every
    // block edge: needles of 1 to 40 bytes, at the start, the end and nowhere.
    void exactBytesAreFoundEverywhere() {
        std::mt19937 rnd(11);
        for (int round = 0; round < 400; ++round) {
            QByteArray hay;
            const int len = int(rnd() % 300);
            for (int i = 0; i < len; ++i) hay += "ab\n"[rnd() % (round % 2 ? 2 : 3)];
            QByteArray needle;
            const int k = 1 + int(rnd() % 40);
            if (len >= k && rnd() % 4) needle = hay.mid(int(rnd() % unsigned(len - k + 1)), k);
            else for (int i = 0; i < k; ++i) needle += "ab"[rnd() % 2];
            for (int from = 0; from <= len + 1; from += 1 + int(rnd() % 7)) {
                const int expected = from > len ? -1 : hay.indexOf(needle, from);
                const size_t got = tav::bytescan::find_bytes(hay.constData(), size_t(len), needle.constData(), size_t(k), size_t(from));
                QCOMPARE(got == size_t(len) ? -1 : int(got), expected);
            }
        }
    }

    void searchPositionLimitsAndBinaryFlag() {
        const QByteArray t = "one two one three one four one";
        XContentFilter f;
        QVERIFY(f.createSymbols(QStringLiteral("one"), false));
        QCOMPARE(marksOf(f.find(2, t)), (Marks{{0, 3}, {8, 3}}));
        QCOMPARE(marksOf(f.find(1, t)), (Marks{{18, 3}}));
        XContentFilter copy(f);   // a copy keeps the position but searches on its own
        QCOMPARE(marksOf(copy.find(0, t)), (Marks{{27, 3}}));
        QCOMPARE(marksOf(f.find(5, t)), (Marks{{27, 3}}));
        QCOMPARE(marksOf(f.find(5, t)), Marks());
        f.seekHome();
        QCOMPARE(f.find(0, t).size(), 4);

        tftest::TestDir d;
        const QByteArray bin("one\0two one", 11);
        tav::XLineReaderDA r;
        QVERIFY(r.openFile(d.file(QStringLiteral("x.bin"), bin), 0x10000, true));
        const auto layer = f.find(0, r);
        QCOMPARE(layer.size(), 2);
        QVERIFY(layer.isBinary());
        QVERIFY(f.find(0, QByteArray("nothing here")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestContentFilter)
#include "test_content_filter.moc"

#include "base/util/NaturalCompare.h"

#include <algorithm>

namespace tav {

int naturalCompare(const QString& a, const QString& b) {
    const int na = a.size(), nb = b.size();
    int i = 0, j = 0;
    const QChar* pa = a.constData();
    const QChar* pb = b.constData();
    // Paths in one table share long beginnings: those are skipped as they are, back to
    // the start of a number that runs across the first difference (compared by value).
    {
        const int m = std::min(na, nb);
        const ushort* sa = reinterpret_cast<const ushort*>(pa);
        const ushort* sb = reinterpret_cast<const ushort*>(pb);
        int k = int(std::mismatch(sa, sa + m, sb).first - sa);
        while (k > 0 && pa[k - 1].isDigit()) --k;
        i = j = k;
    }
    while (i < na && j < nb) {
        const ushort ua = pa[i].unicode(), ub = pb[j].unicode();
        // ASCII letters and signs (nearly every path) without the Unicode tables: a
        // sort of 200,000 paths makes millions of comparisons.
        if (ua < 0x80 && ub < 0x80 && !(ua >= '0' && ua <= '9' && ub >= '0' && ub <= '9')) {
            const ushort fa = ua >= 'A' && ua <= 'Z' ? ushort(ua + 32) : ua;
            const ushort fb = ub >= 'A' && ub <= 'Z' ? ushort(ub + 32) : ub;
            if (fa != fb) return fa < fb ? -1 : 1;
            ++i;
            ++j;
            continue;
        }
        const QChar ca = pa[i], cb = pb[j];
        if (ca.isDigit() && cb.isDigit()) {
            // Whole runs of digits: skip leading zeros, then the longer run is larger.
            int si = i, sj = j;
            while (si < na && a.at(si) == QLatin1Char('0')) ++si;
            while (sj < nb && b.at(sj) == QLatin1Char('0')) ++sj;
            int ei = si, ej = sj;
            while (ei < na && a.at(ei).isDigit()) ++ei;
            while (ej < nb && b.at(ej).isDigit()) ++ej;
            if (ei - si != ej - sj) return (ei - si) - (ej - sj);
            for (int k = 0; k < ei - si; ++k)
                if (a.at(si + k) != b.at(sj + k)) return a.at(si + k).digitValue() - b.at(sj + k).digitValue();
            i = ei;
            j = ej;
            continue;
        }
        const QChar fa = ca.toCaseFolded(), fb = cb.toCaseFolded();
        if (fa != fb) return fa.unicode() < fb.unicode() ? -1 : 1;
        ++i;
        ++j;
    }
    if (i < na || j < nb) return i < na ? 1 : -1;
    return a.compare(b);
}

} // namespace tav

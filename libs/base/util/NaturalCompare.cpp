#include "base/util/NaturalCompare.h"

namespace tav {

int naturalCompare(const QString& a, const QString& b) {
    const int na = a.size(), nb = b.size();
    int i = 0, j = 0;
    while (i < na && j < nb) {
        const QChar ca = a.at(i), cb = b.at(j);
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

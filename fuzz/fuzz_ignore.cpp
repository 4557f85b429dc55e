// libFuzzer target for the readers of names: ignore files (git's rules) and
// the paths of names that are not UTF-8. The input up to the first NUL is an
// ignore file; what follows, split at line ends, are paths matched against it.
// Paths must come back byte for byte through decodePath/encodePath.
//
// Seeds: TF_FUZZ_SEEDS=<dir> ./fuzz_ignore writes a few valid inputs and exits.
#include "FuzzSeeds.h"
#include "base/dir/XIgnore.h"
#include "base/io/XPaths.h"

#include <QDir>
#include <QFile>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {
void writeSeeds(const QString& dir) {
    QDir().mkpath(dir);
    auto put = [&](const char* name, const QByteArray& rules, const QByteArray& paths) {
        QFile f(dir + QLatin1Char('/') + QLatin1String(name));
        if (f.open(QIODevice::WriteOnly)) f.write(rules + QByteArray(1, '\0') + paths);
    };
    put("rules", "# c\nbuild/\n*.log\n!keep.log\n/top\ndocs/**/s*\n[a-c]?.t\\\\mp\n\\#h\n**/gen\na/**/b/\n",
        "/r/build/x\n/r/a.log\n/r/keep.log\n/r/docs/x/y/s1\n/r/b1.tmp\n/r/#h\n/r/x/gen\n/r/a/q/b\n");
    put("bytes", "caf\xe9\n[\xff-\xfe]\n", "/r/caf\xe9\n/r/\xed\xa0\x80\n/r/\xf0\x9f\x98\x80\n");
}
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    tffuzz::writeSeedsIfAsked(writeSeeds);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > (1u << 16)) return 0;
    const std::string input(reinterpret_cast<const char*>(data), size);
    const size_t nul = input.find('\0');
    const std::string rules = input.substr(0, nul);
    const std::string paths = nul == std::string::npos ? std::string() : input.substr(nul + 1);
    const std::vector<tav::XIgnoreRules::Pattern> patterns = tav::XIgnoreRules::parse(rules);
    size_t at = 0;
    while (at < paths.size()) {
        size_t nl = paths.find('\n', at);
        if (nl == std::string::npos) nl = paths.size();
        const std::string path = paths.substr(at, nl - at);
        at = nl + 1;
        for (const auto& p : patterns) {
            const char* g = p.glob.data();
            tav::XIgnoreRules::globMatch(g, g + p.glob.size(), path.data(), path.data() + path.size());
        }
        const QByteArray raw(path.data(), int(path.size()));
        if (tav::encodePath(tav::decodePath(raw)) != raw) std::abort();
    }
    return 0;
}

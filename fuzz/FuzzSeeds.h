#pragma once
// Shared by the fuzz targets: run with TF_FUZZ_SEEDS=<dir>, a target writes its
// seed corpus there and ends instead of fuzzing (fuzz/run.sh does this first).
#include <QByteArray>
#include <QString>
#include <cstdlib>

namespace tffuzz {

inline void writeSeedsIfAsked(void (*writeSeeds)(const QString& dir)) {
    const QByteArray seeds = qgetenv("TF_FUZZ_SEEDS");
    if (seeds.isEmpty()) return;
    writeSeeds(QString::fromLocal8Bit(seeds));
    std::exit(0);
}

} // namespace tffuzz

#pragma once
// Shared test helpers: a private configuration/cache/runtime folder per test
// process, a capture of log lines, and a builder of temporary file trees.
#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <vector>

namespace tftest {

// Points XDG_CONFIG_HOME, XDG_CACHE_HOME and XDG_RUNTIME_DIR at fresh temporary
// folders so no test touches the user's files. Create one per test process
// (e.g. as a member of the test object) before anything reads those folders.
class TestEnv {
public:
    TestEnv();
    ~TestEnv();
    QString configHome() const;
    QString cacheHome() const;
    QString runtimeDir() const;
    QString dataHome() const;
    QString root() const { return dir_.path(); }
    // Writes the configuration node so that "app" starts without the first-run
    // message (a modal dialog that would wait for a user).
    void markFirstRunDone() const;
    // The environment of a program a test starts: this object's folders, and
    // the offscreen platform, or with 'display' false no display at all.
    QProcessEnvironment processEnvironment(bool display) const;
    // The program under test.
    static QString programPath();

private:
    QTemporaryDir dir_;
};

// Collects every log line written while it lives (all levels).
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    QStringList lines() const;
    bool contains(const QString& part) const;          // some line contains 'part'
    bool containsLine(const QString& line) const;      // some line equals 'line'
    int count(const QString& part) const;
    // Lines with this level bit.
    QStringList linesAtLevel(unsigned level) const;
    void clear();

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

// A temporary folder tree: dir("a/b"), file("a/b/x.txt", "content").
class TestDir {
public:
    TestDir();
    QString path() const { return dir_.path(); }
    QString abs(const QString& rel) const;
    QString dir(const QString& rel);
    QString file(const QString& rel, const QByteArray& content = QByteArray());
    bool isValid() const { return dir_.isValid(); }

private:
    QTemporaryDir dir_;
};

} // namespace tftest

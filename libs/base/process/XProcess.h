#pragma once
// A process with listener lists: started, error, finished (argument: crashed).
// Adding to a list keeps earlier entries; setting a list replaces them all.
#include "base/core/XEventListener.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>

namespace tav {

class XProcess : public QProcess {
    Q_OBJECT
public:
    // Extra log lines about every process (switched on by a test run of an application).
    static std::atomic<bool> atomicFlagDebug;

    explicit XProcess(QObject* parent = nullptr);
    ~XProcess() override;

    int addStartedListener(std::function<void()> f) { return started_.add(std::move(f)); }
    int setStartedListener(std::function<void()> f) { return started_.replace(std::move(f)); }
    int addErrorListener(std::function<void()> f) { return error_.add(std::move(f)); }
    int setErrorListener(std::function<void()> f) { return error_.replace(std::move(f)); }
    int addFinishedListener(std::function<void(bool crashed)> f) { return finished_.add(std::move(f)); }
    int setFinishedListener(std::function<void(bool crashed)> f) { return finished_.replace(std::move(f)); }

    // Arguments from one text, split into words (double and single quotes group,
    // a backslash escapes the next character inside double quotes).
    void setArgs(const QString& args);
    // As setArgs, replacing "$(NAME)" references inside each word after the split,
    // so a value with blanks or quotes stays one argument.
    void setArgsReplacingEnv(const QString& rawArgs);
    // Adds "NAME=value" assignments (separated by ';' or line breaks, as written;
    // "$(NAME)" replaced in each value afterwards) and the chosen file's G_*
    // variables to the environment the process starts with; text without '=' is
    // ignored with a log line.
    void addEnv(const QString& env);

    bool isRunning() const { return state() != QProcess::NotRunning; }
    // The id the process had, also after it ended.
    qint64 processId_past() const { return pastPid_; }
    QString toString() const;

    static QStringList splitArgs(const QString& args);
    // Quotes a value for "bash -c" so it stays one word whatever it contains.
    static QString shellQuote(const QString& value);

private:
    XEventListener<std::function<void()>> started_;
    XEventListener<std::function<void()>> error_;
    XEventListener<std::function<void(bool)>> finished_;
    qint64 pastPid_ = 0;
};

// Text of the last operating-system error (errno).
QString getLastErrorMessage();

} // namespace tav

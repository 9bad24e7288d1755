// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/PreparedProcess.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/** twinsift-scan as a process without the rights of the administrator, where they can be laid down. */
class Console final : public PreparedProcess
{
    Q_OBJECT

public:
    struct Result {
        int status; // of an exit; 128 and the number of the signal that ended it, else
        QByteArray output;
        QByteArray error;
    };

    Console();
    ~Console() override;

    void start(const QStringList &arguments);
    /** Waits for the end. */
    Result result();
    /** Ends the test with what has come when the text does not come on standard error. */
    bool waitForError(const QByteArray &text);
    void send(int signalNumber) const;

    /** Has the process begin with the signal ignored, or with its usual effect. */
    void setSignal(int number, bool isIgnored);
    void dropRights() { dropsRights = true; }

    static Result run(const QStringList &arguments,
                      const QString &folder = QString(),
                      const QByteArray &input = QByteArray());

protected:
    void prepareChild() override;

private:
    int signalNumber = 0;
    bool isSignalIgnored = false;
    bool dropsRights = false;
    QByteArray errorSoFar;
};

#pragma once

#include <QProcess>
#include <QTest>

/// A real packet engine that demodulates real audio, in a process of its own (see direwolf_air.py).
class DirewolfRig {
public:
    /// Empty once the engine listens; what keeps it from that otherwise.
    QString Start() {
        m_air.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_air.start(QStringLiteral("python3"), {QStringLiteral(QIRAN_E2E_DIR "/direwolf_air.py")});
        const QByteArray answer = Answer();
        if (!answer.startsWith("listening "))
            return QStringLiteral("Dire Wolf does not run: ") + QString::fromUtf8(answer);
        m_agwPort = answer.mid(10).toShort();
        m_air.write("kiss\n");
        m_kissPort = Answer().toUShort();
        const bool isDone = Answer() == "done" && m_agwPort > 0 && m_kissPort > 0;
        return isDone ? QString() : QStringLiteral("Dire Wolf tells no ports");
    }

    /// False when the engine does not end.
    bool End() {
        m_air.closeWriteChannel();
        return m_air.state() == QProcess::NotRunning || m_air.waitForFinished();
    }

    /// False when the command is not carried out.
    bool Command(const QByteArray& command) {
        m_air.write(command + '\n');
        return Answer() == "done";
    }

    qint16 AgwPort() const { return m_agwPort; }
    quint16 KissPort() const { return m_kissPort; }

private:
    QByteArray Answer() {
        constexpr int milliseconds = 30000;
        while (!m_air.canReadLine()) {
            if (!m_air.waitForReadyRead(milliseconds))
                return {};
        }
        return m_air.readLine().trimmed();
    }

    QProcess m_air;
    qint16 m_agwPort = 0;
    quint16 m_kissPort = 0;
};

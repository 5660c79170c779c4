// SPDX-License-Identifier: Apache-2.0
#include "host/feed/LiveInput.h"

#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Velmar::Host;

class tst_LiveInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pipe();
    void pipeThatIsAFile();
    void descriptorThatIsNone();
    void clientsOfASocket();
    void staleSocketIsReplaced();
    void socketInUse();
    void pathThatIsNoSocket();
    void pathThatCannotBeMade();
    void destroyedWhileClientsAreThere();
    void destroyedByAValue();
};

void tst_LiveInput::pipe()
{
    int ends[2];
    QCOMPARE(::pipe(ends), 0);
    LiveInput input;
    QSignalSpy values(&input, &LiveInput::valueRead);
    QSignalSpy problems(&input, &LiveInput::problemFound);
    QSignalSpy ended(&input, &LiveInput::ended);
    input.readFrom(ends[0]);
    QCoreApplication::processEvents(); // nothing there: does not wait

    const QByteArray first = "{\"SPEED\": 1.5}\nnonsense\n{\"CAMERA";
    QCOMPARE(::write(ends[1], first.constData(), size_t(first.size())), ssize_t(first.size()));
    QTRY_COMPARE(values.count(), 1);
    QCOMPARE(values.at(0).at(0).toString(), QStringLiteral("SPEED"));
    QCOMPARE(values.at(0).at(1), QVariant(QVariant(1.5)));
    QCOMPARE(problems.count(), 1);
    QVERIFY(problems.at(0).at(0).toString().startsWith(QStringLiteral("live input, line 2: ")));

    const QByteArray second = "_TILT\": -3}"; // the end of the pipe ends the line
    QCOMPARE(::write(ends[1], second.constData(), size_t(second.size())), ssize_t(second.size()));
    ::close(ends[1]);
    QTRY_COMPARE(ended.count(), 1);
    QCOMPARE(values.count(), 2);
    QCOMPARE(values.at(1).at(0).toString(), QStringLiteral("CAMERA_TILT"));
    QTest::qWait(0);
    QCOMPARE(ended.count(), 1);
    ::close(ends[0]);
}

void tst_LiveInput::pipeThatIsAFile()
{
    QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("values")));
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.write(QByteArray("{\"SPEED\":1}\n").repeated(20000));
    QVERIFY(file.flush() && file.seek(0));
    LiveInput input;
    QSignalSpy values(&input, &LiveInput::valueRead);
    QSignalSpy ended(&input, &LiveInput::ended);
    input.readFrom(file.handle());
    QTRY_COMPARE(ended.count(), 1);
    QCOMPARE(values.count(), 20000);
}

void tst_LiveInput::descriptorThatIsNone()
{
    QTemporaryDir directory;
    const int descriptor = ::open(QFile::encodeName(directory.path()).constData(), O_RDONLY);
    QVERIFY(descriptor >= 0); // a folder: opens, but cannot be read
    LiveInput input;
    QSignalSpy problems(&input, &LiveInput::problemFound);
    QSignalSpy ended(&input, &LiveInput::ended);
    input.readFrom(descriptor);
    QTRY_COMPARE(ended.count(), 1);
    QCOMPARE(problems.count(), 1);
    ::close(descriptor);
}

void tst_LiveInput::clientsOfASocket()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("live"));
    LiveInput input;
    QString error;
    QVERIFY2(input.listen(path, &error), qPrintable(error));
    // Nobody else may write there.
    QVERIFY(!(QFile::permissions(path) & (QFile::WriteOther | QFile::WriteGroup)));
    QSignalSpy values(&input, &LiveInput::valueRead);
    QSignalSpy problems(&input, &LiveInput::problemFound);
    QSignalSpy ended(&input, &LiveInput::ended);

    QLocalSocket first;
    QLocalSocket second;
    first.connectToServer(path);
    second.connectToServer(path);
    QVERIFY(first.waitForConnected() && second.waitForConnected());
    first.write("{\"SPEED\":");
    first.flush();
    second.write("{\"CAMERA_PAN\":2}\n{\"CAMERA_PAN\":");
    second.flush();
    QTRY_COMPARE(values.count(), 1);
    QCOMPARE(values.at(0).at(0).toString(), QStringLiteral("CAMERA_PAN"));
    second.disconnectFromServer(); // in the middle of a line
    QTRY_COMPARE(problems.count(), 1);
    QVERIFY(problems.at(0).at(0).toString().contains(QStringLiteral("line 2: ")));
    first.write("1}\n");
    first.flush();
    QTRY_COMPARE(values.count(), 2);
    QCOMPARE(values.at(1).at(0).toString(), QStringLiteral("SPEED"));

    // Came, wrote and went before anybody looked.
    {
        QLocalSocket third;
        third.connectToServer(path);
        QVERIFY(third.waitForConnected());
        third.write("{\"SPEED\":7}");
        third.flush();
    }
    QTRY_COMPARE(values.count(), 3);
    first.abort();
    QCoreApplication::processEvents();
    QCOMPARE(problems.count(), 1);
    QCOMPARE(ended.count(), 0);
}

void tst_LiveInput::staleSocketIsReplaced()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("live"));
    const pid_t child = ::fork();
    if (child == 0) { // a program that ends without cleaning up
        QLocalServer server;
        server.listen(path);
        ::_exit(0);
    }
    QVERIFY(child > 0);
    QCOMPARE(::waitpid(child, nullptr, 0), child);
    QVERIFY(QFile::exists(path));
    LiveInput input;
    QString error;
    QVERIFY2(input.listen(path, &error), qPrintable(error));
    QLocalSocket client;
    client.connectToServer(path);
    QVERIFY(client.waitForConnected());
}

void tst_LiveInput::socketInUse()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("live"));
    LiveInput first;
    LiveInput second;
    QString error;
    QVERIFY(first.listen(path, &error));
    QVERIFY(!second.listen(path, &error));
    QVERIFY2(error.contains(QStringLiteral("another program")), qPrintable(error));
    QVERIFY(QFile::exists(path));
}

void tst_LiveInput::pathThatIsNoSocket()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("precious"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("data") == 4);
    file.close();
    LiveInput input;
    QString error;
    QVERIFY(!input.listen(path, &error));
    QVERIFY2(error.contains(QStringLiteral("no socket")), qPrintable(error));
    QCOMPARE(file.size(), qint64(4));
}

void tst_LiveInput::pathThatCannotBeMade()
{
    LiveInput input;
    QString error;
    QVERIFY(!input.listen(QStringLiteral("/nonexistent/folder/live"), &error));
    QVERIFY(error.contains(QStringLiteral("/nonexistent/folder/live")));
}

void tst_LiveInput::destroyedWhileClientsAreThere()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("live"));
    auto input = std::make_unique<LiveInput>();
    QString error;
    QVERIFY(input->listen(path, &error));
    QLocalSocket client;
    client.connectToServer(path);
    QVERIFY(client.waitForConnected());
    client.write("{\"SPEED\":1}\n");
    client.flush();
    QSignalSpy values(input.get(), &LiveInput::valueRead);
    QTRY_COMPARE(values.count(), 1);
    input.reset();
    QVERIFY(!QFile::exists(path)); // nothing is left behind
    QTRY_COMPARE(client.state(), QLocalSocket::UnconnectedState);
}

void tst_LiveInput::destroyedByAValue()
{
    int ends[2];
    QCOMPARE(::pipe(ends), 0);
    auto input = std::make_unique<LiveInput>();
    connect(input.get(), &LiveInput::valueRead, this, [&] { input.release()->deleteLater(); });
    input->readFrom(ends[0]);
    const QByteArray line = "{\"SPEED\":1}\n";
    QCOMPARE(::write(ends[1], line.constData(), size_t(line.size())), ssize_t(line.size()));
    QTRY_VERIFY(!input);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ::close(ends[0]);
    ::close(ends[1]);
}

QTEST_GUILESS_MAIN(tst_LiveInput)
#include "tst_LiveInput.moc"

// The real tvc program: one instance per user, and a run that starts,
// shows its picture and ends cleanly when asked to.
#include <QProcess>
#include <QtTest>
#include <sys/wait.h>
#include <unistd.h>

#include "app/SingleInstance.h"
#include "support/TestMachine.h"

using tvc::app::SingleInstance;

class AppTest : public QObject {
    Q_OBJECT
  private slots:
    void oneInstanceAtATimeAndNoStaleLockAfterACrash();
    void startsRunsAndClosesCleanly();
};

void AppTest::oneInstanceAtATimeAndNoStaleLockAfterACrash() {
    tvc::test::ScratchDir dir;
    const std::string lock = (dir.path() / "tvc.lock").string();
    {
        SingleInstance first(lock);
        QVERIFY(first.Acquired());
        SingleInstance second(lock);
        QVERIFY(!second.Acquired());
    }
    SingleInstance again(lock);
    QVERIFY(again.Acquired());

    // A holder that dies without cleaning up leaves the lock free.
    tvc::test::ScratchDir other;
    const std::string lock2 = (other.path() / "tvc.lock").string();
    const pid_t child = fork();
    if (child == 0) {
        SingleInstance held(lock2);
        pause();
        _exit(0);
    }
    QTest::qWait(200);
    QVERIFY(!SingleInstance(lock2).Acquired());
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    QVERIFY(SingleInstance(lock2).Acquired());
}

void AppTest::startsRunsAndClosesCleanly() {
    tvc::test::ScratchDir dir;
    tvc::test::WriteRomSet(dir);
    QProcess app;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    env.insert("SDL_AUDIODRIVER", "dummy");
    env.insert("TVC_SHM_TAG", QString::fromStdString(tvc::test::TagSharedMemory("app")));
    env.insert("XDG_RUNTIME_DIR", QString::fromStdString(dir.path().string()));
    app.setProcessEnvironment(env);
    app.setWorkingDirectory(QString::fromStdString(dir.path().string()));
    app.start(TVC_APP_BIN, {});
    QVERIFY(app.waitForStarted(5000));
    QVERIFY(!app.waitForFinished(500)); // still running after half a second
    app.terminate();
    QVERIFY(app.waitForFinished(5000));
    QCOMPARE(app.exitStatus(), QProcess::NormalExit);
    QCOMPARE(app.exitCode(), 0);
}

QTEST_MAIN(AppTest)
#include "app_uitest.moc"

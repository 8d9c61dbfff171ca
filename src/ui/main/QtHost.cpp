#include "ui/main/QtHost.h"

#include <QApplication>
#include <QMessageBox>
#include <QThread>

#include <cstdlib>

#include "core/Machine.h"
#include "ui/main/TScreen.h"

namespace tvc::ui {

namespace {
QString ToQ(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}
} // namespace

void QtHost::DoEvents() {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    if (window_) window_->PumpKeys();
    if (window_) window_->PumpPanels();
}

void QtHost::MessageBox(std::string_view text, std::string_view title, MsgKind kind) {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    switch (kind) {
    case MsgKind::Critical: icon = QMessageBox::Critical; break;
    case MsgKind::Exclamation: icon = QMessageBox::Warning; break;
    case MsgKind::Information: icon = QMessageBox::Information; break;
    case MsgKind::Plain: break;
    }
    QMessageBox box(icon, ToQ(title), ToQ(text), QMessageBox::Ok, window_);
    box.exec();
}

void QtHost::Fatal(std::string_view text, std::string_view title) {
    QMessageBox::critical(window_, ToQ(title), ToQ(text));
    if (onFatal) {
        onFatal();
        return;
    }
    std::_Exit(1);
}

void QtHost::SetStatus(StatusField field, std::string_view text) {
    if (window_) window_->SetStatus(field, ToQ(text));
}

void QtHost::SetLoadBar(int width) {
    if (window_) window_->SetLoadBar(width);
}

void QtHost::PortLogChanged(bool) {
    if (window_) window_->RefreshPortLog();
}

void QtHost::MonitorRedraw() {
    if (window_) window_->MonitorRedraw();
}

// The machine's own beep stops everything for its length; the desktop can
// only ring its bell, so the wait keeps the emulated timing.
void QtHost::Beep(int, int milliseconds) {
    QApplication::beep();
    QThread::msleep(static_cast<unsigned long>(milliseconds));
}

void QtHost::Sleep(int milliseconds) {
    if (audio && window_) {
        SoundFX& sound = window_->machine().sound;
        audio->ServeWait(sound.MMDemo, sound.MMDemo2, sound.Deliveries);
    }
    QThread::msleep(static_cast<unsigned long>(milliseconds));
}

void QtHost::PictureReady() {
    if (window_) window_->PictureReady();
}

} // namespace tvc::ui

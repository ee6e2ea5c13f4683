#include "settings/window/PreferencesProcess.h"

#include <QFile>
#include <utility>

namespace tavrin {

namespace {

/// A window that is closed stores what it has to in a moment.
constexpr int patienceMilliseconds = 3000;

}  // namespace

PreferencesProcess::PreferencesProcess(Platform& platform) : platform_(platform) {
  process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  QObject::connect(&process_, &QProcess::readyReadStandardOutput, &process_,
                   [this] { readAnswers(); });
  QObject::connect(&process_, &QProcess::errorOccurred, &process_,
                   [this](QProcess::ProcessError error) {
                     if (error == QProcess::FailedToStart) failedToStart();
                   });
  QObject::connect(&process_, &QProcess::finished, &process_,
                   [this](int exitCode, QProcess::ExitStatus status) { ended(exitCode, status); });
}

PreferencesProcess::~PreferencesProcess() {
  QObject::disconnect(&process_, nullptr, nullptr, nullptr);
  process_.closeWriteChannel();
  process_.waitForFinished(patienceMilliseconds);
}

bool PreferencesProcess::isVisible() const {
  return process_.state() != QProcess::NotRunning;
}

void PreferencesProcess::setClosedAction(std::function<void()> action) {
  closedAction_ = std::move(action);
}

void PreferencesProcess::makeKeyAndOrderFront() {
  if (!isVisible()) start();
  if (!isVisible()) return;
  ++unansweredWishes_;
  process_.write(showLine);
}

void PreferencesProcess::start() {
  unansweredWishes_ = 0;
  process_.start(QFile::decodeName(platform_.bundle.bundlePath().c_str()),
                 {QString::fromUtf8(preferencesWindowOption)});
}

void PreferencesProcess::failedToStart() {
  platform_.log.write("the preferences window cannot be started: " +
                      process_.errorString().toStdString());
  if (closedAction_) closedAction_();
}

void PreferencesProcess::readAnswers() {
  const QByteArray answers = process_.readAllStandardOutput();
  unansweredWishes_ -= static_cast<int>(answers.count('\n'));
}

void PreferencesProcess::ended(int exitCode, QProcess::ExitStatus status) {
  readAnswers();
  const bool hasCrashed = status == QProcess::CrashExit || exitCode != 0;
  if (hasCrashed) platform_.log.write("the preferences window has ended by a fault");
  // A wish that came while the window was being closed is for a new one.
  if (unansweredWishes_ > 0 && !hasCrashed) return makeKeyAndOrderFront();
  if (closedAction_) closedAction_();
}

}  // namespace tavrin

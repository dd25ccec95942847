// Replay of recordings: listing them beside the cameras, the replay bar, dropping files on the
// window, and refusing files that are not recordings.
#include <QBoxLayout>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QTimer>

#include "ImuNoiseWindow.h"
#include "InputThreadModul.h"
#include "RecordingFile.h"
#include "ReplayBar.h"
#include "mainwindow.h"
#include "programstates.h"
#include "ui_mainwindow.h"

namespace {

// The box layout somewhere below `layout` that holds `widget`.
QBoxLayout* boxHolding(QLayout* layout, QWidget* widget) {
    if (layout == nullptr) return nullptr;
    if (auto* box = qobject_cast<QBoxLayout*>(layout); box && box->indexOf(widget) >= 0) return box;
    for (int i = 0; i < layout->count(); ++i) {
        if (QBoxLayout* found = boxHolding(layout->itemAt(i)->layout(), widget)) return found;
    }
    return nullptr;
}

bool isRecordingFile(const QString& path) {
    const QFileInfo file(path);
    return file.suffix().compare(QLatin1String("csv"), Qt::CaseInsensitive) == 0 && !file.isDir();
}

QStringList recordingsIn(const QMimeData* data) {
    QStringList paths;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile() && isRecordingFile(url.toLocalFile())) paths << url.toLocalFile();
    }
    return paths;
}

}  // namespace

void MainWindow::placeReplayBar() {
    replayBar = new ReplayBar(this);
    if (QBoxLayout* box = boxHolding(ui->CentralWidget->layout(), ui->widget_chart))
        box->insertWidget(box->indexOf(ui->widget_chart) + 1, replayBar);
    replayBar->hide();
    connectReplayBar();
    setAcceptDrops(true);
}

void MainWindow::connectReplayBar() {
    connect(replayBar, &ReplayBar::pauseToggled, this,
            [](bool paused) { ProgramStates::setBoolAttr(BoolSlot::PAUSE, paused); });
    connect(replayBar, &ReplayBar::seekRequested, this, [this](int frame) {
        if (InputThreadModul* module = session.input()) module->seekReplay(frame);
    });
    connect(replayBar, &ReplayBar::stepRequested, this, [this](int frames) {
        if (InputThreadModul* module = session.input())
            module->seekReplay(module->replayPosition() + frames);
    });
    connect(replayBar, &ReplayBar::speedChosen, this, [this](float factor) {
        if (InputThreadModul* module = session.input()) module->setReplaySpeed(factor);
    });
    connect(replayBar, &ReplayBar::imuNoiseRequested, this, &MainWindow::showImuNoise);
}

ImuNoiseWindow* MainWindow::imuNoise() const { return imuNoiseWindow.data(); }

// One window per recording: asking again brings it forward, another recording replaces it.
void MainWindow::showImuNoise() {
    if (selected.recording.isEmpty()) return;
    if (imuNoiseWindow && imuNoiseWindow->recordingPath() != selected.recording)
        delete imuNoiseWindow;
    if (!imuNoiseWindow) imuNoiseWindow = new ImuNoiseWindow(selected.recording, this);
    imuNoiseWindow->show();
    imuNoiseWindow->raise();
    imuNoiseWindow->activateWindow();
}

void MainWindow::openRecordings(const QStringList& paths) {
    QStringList added;
    for (const QString& path : paths) {
        const QString absolute = QFileInfo(path).absoluteFilePath();
        recordings.removeAll(absolute);
        refusedRecordings.removeAll(absolute);  // asked for again: try again
        added << absolute;
    }
    if (added.isEmpty()) return;
    recordings = added + recordings;
    // Before the first poll the window opens the first listed by itself.
    if (noCamera && isDetecting()) return;
    cameraDisconnected();  // closes what is open and opens the first listed: the new recording
}

void MainWindow::listRecording(const QString& path) {
    if (refusedRecordings.contains(path)) return;
    for (const LiveCameraSession::Camera& listed : listedCameras) {
        if (listed.recording == path) return;
    }
    LiveCameraSession::Camera camera;
    camera.recording = path;
    listCamera(camera, QString());
}

// The window as it stands after an opening or a reset: the replay bar and the title say whether
// a recording is playing, and which.
void MainWindow::showReplayState() {
    const InputThreadModul* module = session.input();
    const bool replaying = module != nullptr && module->isReplaying();
    ProgramStates::setBoolAttr(BoolSlot::PAUSE, false);
    if (!replaying) {
        replayBar->hide();
        setWindowTitle(tr("Sensor Data Viewer"));
        return;
    }
    // Without a step of one the replay would hold its first frame.
    ProgramStates::setIntAttr(IntSlot::REPLAY_STEP, 1);
    const int frames = module->replayFrameCount();
    replayStartNs = module->replayTimestamp(0);
    const double total =
        static_cast<double>(module->replayTimestamp(frames - 1) - replayStartNs) / 1e9;
    replayBar->showRecording(frames, total);
    replayBar->show();
    setWindowTitle(
        tr("Sensor Data Viewer - replaying %1").arg(QFileInfo(selected.recording).fileName()));
}

void MainWindow::showReplayPosition() {
    const InputThreadModul* module = session.input();
    if (module == nullptr || !module->isReplaying() || replayBar->isHidden()) return;
    const bw::Timestamp shownNs = module->shownFrameTimestamp();
    const double elapsed =
        shownNs >= replayStartNs ? static_cast<double>(shownNs - replayStartNs) / 1e9 : 0.0;
    replayBar->showPosition(module->replayPosition(), elapsed);
}

// Says why the file cannot be replayed, and keeps it out of the list from now on.
void MainWindow::refuseRecording(const QString& path) {
    recordings.removeAll(path);
    if (!refusedRecordings.contains(path)) refusedRecordings << path;
    recording::Problem problem;
    if (recording::RecordingFile::open(path.toStdString(), problem)) {
        problem.text = "The camera layer could not open it.";
    }
    const QString where = problem.line > 0 ? tr("Line %1: ").arg(problem.line) : QString();
    showMessage(
        QMessageBox::Warning, tr("Replay"),
        tr("%1 cannot be replayed.\n%2%3")
            .arg(QDir::toNativeSeparators(path), where, QString::fromStdString(problem.text)));
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!recordingsIn(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const QStringList paths = recordingsIn(event->mimeData());
    if (paths.isEmpty()) return;
    event->acceptProposedAction();
    // Opening may show a message box; not from inside the drop.
    QTimer::singleShot(0, this, [this, paths] { openRecordings(paths); });
}

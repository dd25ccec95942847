// Replay of recordings: listing them beside the cameras, the replay bar, dropping files on the
// window, and refusing files that are not recordings.
#include <QBoxLayout>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QTimer>
#include <limits>

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

// "Line 12: The row has ..." or, for the file as a whole, the text alone.
QString whereAndWhat(const recording::Problem& problem) {
    const QString what = QString::fromStdString(problem.text);
    return problem.line > 0 ? MainWindow::tr("Line %1: %2").arg(QString::number(problem.line), what)
                            : what;
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
        // Asked for again: try again, and tell again what is wrong with it.
        refusedRecordings.removeAll(absolute);
        toldCutShort.removeAll(absolute);
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
    QString why;
    if (const auto file = recording::RecordingFile::open(path.toStdString(), problem)) {
        // The replay position is an int.
        why = file->rowCount() > std::numeric_limits<int>::max()
                  ? tr("It has %1 rows, more than a replay can hold.").arg(file->rowCount())
                  : tr("The camera layer could not open it.");
    } else {
        why = whereAndWhat(problem);
    }
    showMessage(QMessageBox::Warning, tr("Replay"),
                tr("%1 cannot be replayed.\n%2").arg(QDir::toNativeSeparators(path), why));
}

// A recording whose writer died ends in a damaged line; it replays up to there. The user hears
// of it the first time it opens, which reads the file once more to find the line.
void MainWindow::tellIfCutShort(const QString& path) {
    if (path.isEmpty() || toldCutShort.contains(path)) return;
    toldCutShort << path;
    recording::Problem problem;
    const auto file = recording::RecordingFile::open(path.toStdString(), problem);
    if (!file || !file->cutShort()) return;
    showMessage(QMessageBox::Information, tr("Replay"),
                tr("%1 ends in a damaged line, as a recording does whose writer stopped "
                   "mid-row. The %2 rows before it are replayed.\n%3")
                    .arg(QDir::toNativeSeparators(path), QString::number(file->rowCount()),
                         whereAndWhat(*file->cutShort())));
}

// The open recording could not be read any more. It is not listed again until asked for again.
void MainWindow::endUnreadableReplay(const QString& path) {
    recordings.removeAll(path);
    if (!refusedRecordings.contains(path)) refusedRecordings << path;
    recording::Problem problem;
    const auto file = recording::RecordingFile::open(path.toStdString(), problem);
    const QString why = file ? tr("It was changed while it was replayed.") : whereAndWhat(problem);
    showMessage(QMessageBox::Warning, tr("Replay"),
                tr("%1 could not be read any more; the replay has ended.\n%2")
                    .arg(QDir::toNativeSeparators(path), why));
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

// SPDX-License-Identifier: Apache-2.0
#include "ui/render/PictureLink.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QSocketNotifier>
#include <QTimer>
#include <climits>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "render/PictureSocket.h"
#include "site/Site.h"
#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr const char* kViewVariable = "TAVRN_VIEW";
constexpr size_t kMostRecords = 200;       // that a window which comes up is told
constexpr qint64 kTimeToComeUp = 5000;     // milliseconds before another one is started
constexpr int kMostTries = 3;              // windows in a row that do not come up
constexpr const char* kLiveSlot = "live";  // of what waits, only the newest counts
constexpr const char* kFrameSlot = "frame";

const char* StateWord(RenderRecord::State state) {
    switch (state) {
        case RenderRecord::State::kRunning:
            return "running";
        case RenderRecord::State::kDone:
            return "done";
        case RenderRecord::State::kFailed:
            return "failed";
        case RenderRecord::State::kStopped:
            break;
    }
    return "stopped";
}

int64_t Milliseconds(std::chrono::system_clock::time_point time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

}  // namespace

// A connection, or the wait for one.
class PictureLink::Line : public QObject {
  public:
    Line(Site& site, Hands hands)
        : m_site(site),
          m_hands(std::move(hands)),
          m_program(site.environment.Get(kViewVariable).value_or("")),
          m_socket(m_program.empty() ? Environment() : site.environment) {
        if (!m_socket.IsPossible()) return;
        m_directory.addPath(Shown(m_socket.Directory()));
        connect(&m_directory, &QFileSystemWatcher::directoryChanged, this, [this] { Connect(); });
        Connect();
    }

    bool IsPossible() const { return m_socket.IsPossible(); }
    bool IsUp() const { return m_wire.has_value(); }

    // To a window that is there. The first words are who this is and all that a window has to know.
    bool Connect() {
        if (IsUp()) return true;
        FileDescriptor socket = m_socket.Connect();
        if (!socket) return false;
        m_wire.emplace(std::move(socket));
        m_readable = std::make_unique<QSocketNotifier>(m_wire->Descriptor(), QSocketNotifier::Read);
        m_writable = std::make_unique<QSocketNotifier>(m_wire->Descriptor(), QSocketNotifier::Write);
        connect(m_readable.get(), &QSocketNotifier::activated, this, [this] { Receive(); });
        connect(m_writable.get(), &QSocketNotifier::activated, this, [this] { Flush(); });
        m_tries = 0;
        m_hasTold = false;
        m_hasMissed = false;
        m_untold.clear();
        Put(Of("hello"));
        TellAll();
        Flush();
        if (m_hands.cameOrWent) m_hands.cameOrWent();
        return IsUp();
    }

    // Where there is no window, one is started, which is told everything once it listens. False if none can
    // be.
    bool Start() {
        if (!IsPossible()) return false;
        if (Connect()) return true;
        if (m_sinceStart.isValid() && m_sinceStart.elapsed() < kTimeToComeUp) return true;
        if (++m_tries > kMostTries) {
            if (m_tries == kMostTries + 1)
                m_site.report.LogLine("the picture window does not come up: %s", m_program.c_str());
            return false;
        }
        m_sinceStart.start();
        return m_site.commands.StartProgram({m_program}, "the picture window");
    }
    // The user asks for it: what failed before is no reason not to try.
    void ForgetTries() {
        m_tries = 0;
        m_sinceStart.invalidate();
    }

    PictureMessage Of(const char* verb) const {
        return PictureMessage(verb).Set("desk", m_site.directories.workDir);
    }
    // Of what waits in a slot only the newest is told.
    void Say(const PictureMessage& message, const char* slot = "") {
        if (!Connect()) return;
        Put(message, slot);
        Flush();
    }

    // Tells of a render, or that it has left the history.
    void SayRender(int number) {
        if (!Connect()) return;
        TellRender(number);
        Flush();
    }

    std::map<int, RenderRecord> records;
    std::optional<PictureMessage> live;     // the newest live picture
    std::optional<PictureMessage> trouble;  // of what came after it
    std::optional<PictureMessage> compare;  // until a window was told
    std::optional<PictureMessage> frame;

  private:
    PictureMessage MessageOf(const RenderRecord& record) const {
        PictureMessage message = Of("render");
        message.Set("number", record.number).Set("name", record.name).Set("state", StateWord(record.state));
        message.Set("started", Milliseconds(record.started)).Set("differs", record.differs);
        if (record.duration.count() > 0) message.Set("duration", record.duration.count());
        if (!record.picture.empty()) message.Set("file", record.picture);
        if (!record.failure.empty()) message.Set("text", record.failure);
        return message;
    }
    void TellRender(int number) {
        const auto record = records.find(number);
        const bool isKnown = record != records.end();
        if (!Put(isKnown ? MessageOf(record->second) : Of("forget").Set("number", number)))
            m_untold.insert(number);
    }
    void TellAll() {
        if (frame) Put(*frame, kFrameSlot);
        for (const auto& [number, record] : records) TellRender(number);
        if (live) Put(*live, kLiveSlot);
        if (trouble) Put(*trouble);
        if (compare) Put(*std::exchange(compare, std::nullopt));
    }
    // False if it cannot be taken now.
    bool Put(const PictureMessage& message, const char* slot = "") {
        if (!IsUp() || m_wire->Send(message, slot)) return true;
        m_hasMissed = true;
        if (!std::exchange(m_hasTold, true))
            m_site.report.LogLine("the picture window does not answer: it is told the rest when it does");
        return false;
    }
    // What it could not take, as far as that still counts.
    void CatchUp() {
        if (frame) Put(*frame, kFrameSlot);
        if (live) Put(*live, kLiveSlot);
        if (trouble) Put(*trouble);
        for (const int number : std::exchange(m_untold, {})) TellRender(number);
    }
    void Flush() {
        if (!IsUp()) return;
        if (!m_wire->Flush()) return Disconnect();
        if (!m_wire->IsWaiting() && std::exchange(m_hasMissed, false)) {
            CatchUp();
            if (!m_wire->Flush()) return Disconnect();
        }
        m_writable->setEnabled(m_wire->IsWaiting());
    }
    void Receive() {
        const bool isThere = m_wire->Receive();
        // Later: what the user wants may open a dialog, and take its time.
        while (const auto message = m_wire->Next())
            QTimer::singleShot(0, this, [this, message = *message] { Heed(message); });
        if (!isThere) Disconnect();
    }
    void Heed(const PictureMessage& message) {
        const auto number = message.Number("number").value_or(0);
        const auto tell = [&](const std::function<void(int)>& hand) {
            if (number > 0 && number < INT_MAX && hand) hand(static_cast<int>(number));
        };
        const std::string& verb = message.Verb();
        const auto id = message.Number("id");
        if (verb == "shown" && id && m_hands.liveShown) m_hands.liveShown(static_cast<uint64_t>(*id));
        // A dialog that is up comes first.
        if (QApplication::activeModalWidget() != nullptr) return;
        if (verb == "select") return tell(m_hands.selectRender);
        if (verb == "restore") return tell(m_hands.restoreRender);
        if (verb == "keep") return tell(m_hands.keepRender);
    }
    void Disconnect() {
        // Their own call may be the one that has come here.
        for (auto* notifier : {&m_readable, &m_writable}) {
            (*notifier)->setEnabled(false);
            notifier->release()->deleteLater();
        }
        m_wire.reset();
        m_sinceStart.invalidate();
        if (m_hands.cameOrWent) m_hands.cameOrWent();
    }

    Site& m_site;
    Hands m_hands;
    std::string m_program;
    PictureSocket m_socket;
    QFileSystemWatcher m_directory;
    std::optional<PictureWire> m_wire;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable;
    QElapsedTimer m_sinceStart;
    int m_tries = 0;
    bool m_hasMissed = false;  // what was to be told, these renders among it
    std::set<int> m_untold;
    bool m_hasTold = false;  // that it does not answer
};

PictureLink::PictureLink(Site& site, Hands hands) : m_line(std::make_unique<Line>(site, std::move(hands))) {}

PictureLink::~PictureLink() = default;

void PictureLink::ShowLive(uint64_t id, const std::string& path, bool isFinal) {
    m_line->trouble.reset();
    m_line->live = m_line->Of("live")
                       .Set("id", static_cast<int64_t>(id))
                       .Set("file", path)
                       .Set("final", isFinal ? 1 : 0);
    if (m_line->IsUp()) {
        m_line->Say(*m_line->live, kLiveSlot);
    } else {
        m_line->Start();
    }
}

void PictureLink::TellLiveTrouble(const std::string& text) {
    m_line->trouble = m_line->Of("trouble").Set("text", text);
    m_line->Say(*m_line->trouble);
}

void PictureLink::EndLive() {
    if (!m_line->live && !m_line->trouble) return;
    m_line->live.reset();
    m_line->trouble.reset();
    m_line->Say(m_line->Of("endlive"));
}

void PictureLink::TellRender(const RenderRecord& record) {
    m_line->records[record.number] = record;
    while (m_line->records.size() > kMostRecords) m_line->records.erase(m_line->records.begin());
    // Who connects now tells it with all the others.
    if (m_line->IsUp()) {
        m_line->SayRender(record.number);
    } else {
        m_line->Connect();
    }
}

void PictureLink::ForgetRender(int number) {
    m_line->records.erase(number);
    m_line->SayRender(number);
}

void PictureLink::CompareRenders(int first, int second) {
    const PictureMessage message = m_line->Of("compare").Set("first", first).Set("second", second);
    if (m_line->IsUp()) return m_line->Say(message);
    m_line->compare = message;
    m_line->ForgetTries();
    m_line->Start();
}

bool PictureLink::IsPossible() const { return m_line->IsPossible(); }

void PictureLink::ComeUp() {
    if (m_line->IsUp()) return m_line->Say(m_line->Of("comeup"));
    m_line->ForgetTries();
    m_line->Start();
}

void PictureLink::Close() {
    if (m_line->IsUp()) m_line->Say(m_line->Of("close"));
}

bool PictureLink::IsUp() const { return m_line->IsUp(); }

void PictureLink::FrameMoved(const QRect& frame) {
    // There no program knows where its windows stand.
    if (QGuiApplication::platformName().startsWith("wayland")) return;
    m_line->frame = m_line->Of("frame")
                        .Set("x", frame.x())
                        .Set("y", frame.y())
                        .Set("w", frame.width())
                        .Set("h", frame.height());
    if (m_line->IsUp()) m_line->Say(*m_line->frame, kFrameSlot);
}

}  // namespace tavrin

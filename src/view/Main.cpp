// SPDX-License-Identifier: Apache-2.0
// tavrin-view: the picture window. One process for each user and display, whoever starts how many.
#include <QApplication>
#include <QSettings>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "app/Version.h"
#include "base/Paths.h"
#include "icons/Icons.h"
#include "render/PictureSocket.h"
#include "view/Hand.h"
#include "view/PictureServer.h"
#include "view/PictureWindow.h"

namespace {

using namespace tavrin;

constexpr int kWrongCall = 2;
// For a desk to tell where it stands, before the window is placed.
constexpr std::chrono::milliseconds kFrameWait{60};

constexpr const char* kHelp =
    "usage: tavrin-view [FILE]...\n"
    "       tavrin-view --hand NUMBER NAME FILE [--growing]\n"
    "\n"
    "Shows pictures in the one picture window of this display.\n"
    "  --hand     a render's picture; NUMBER 0: one to compare with.  With --growing the file is shown\n"
    "             while it is written\n"
    "  --help, --version\n";

// Leaves a word with the process that has the window, which may be about to listen.
bool TellOther(const PictureSocket& socket, const PictureMessage& message) {
    constexpr std::chrono::milliseconds kStep{20};
    for (int tries = 0; tries < 100; ++tries) {
        if (FileDescriptor connection = socket.Connect()) {
            PictureWire wire(std::move(connection));
            return wire.Send(message) && wire.Flush();
        }
        std::this_thread::sleep_for(kStep);
    }
    return false;
}

int RunWindow(int argc, char** argv, const std::vector<PictureMessage>& first) {
    PictureSocket socket(Environment::FromProcess());
    FileDescriptor listening = socket.Listen();
    if (!listening && socket.IsPossible()) {
        for (const PictureMessage& message : first) {
            if (!TellOther(socket, message)) {
                std::fputs("tavrin-view: the picture window does not answer\n", stderr);
                return EXIT_FAILURE;
            }
        }
        return EXIT_SUCCESS;
    }
    std::signal(SIGPIPE, SIG_IGN);
    QApplication application(argc, argv);
    QApplication::setApplicationName("tavrin-view");
    QApplication::setDesktopFileName("tavrin");  // its windows are the program's
    QApplication::setWindowIcon(ApplicationIcon());
    QSettings settings(QSettings::IniFormat, QSettings::UserScope, "Orlane", "Pictures");
    std::unique_ptr<PictureServer> server;
    PictureWindow window(settings, [&server](const std::string& desk, const PictureMessage& message) {
        if (server != nullptr) server->Tell(desk, message);
    });
    if (listening) {
        server = std::make_unique<PictureServer>(
            std::move(listening),
            PictureServer::Hands{.take = [&window](const PictureMessage& message) { window.Take(message); },
                                 .came = [&window](const std::string& desk) { window.DeskCame(desk); },
                                 .went = [&window](const std::string& desk) { window.DeskWent(desk); }});
    }
    for (const PictureMessage& message : first) {
        if (message.Verb() != "comeup") window.Take(message);
    }
    window.ShowInPlace(kFrameWait, [] { QCoreApplication::quit(); });
    const int status = QApplication::exec();
    server.reset();  // what it would tell the window is nobody's any more
    return status;
}

// A picture that a user names is no render of any desk.
PictureMessage Named(const std::string& file) {
    return PictureMessage("render")
        .Set("number", 0)
        .Set("name", PathFile(file))
        .Set("file", FullPath(file))
        .Set("state", "done");
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    const std::string option = words.empty() ? std::string() : words.front();
    if (option == "--hand") return HandPicture({words.begin() + 1, words.end()}, Environment::FromProcess());
    if (option == "--help") return std::fputs(kHelp, stdout) < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
    if (option == "--version") {
        std::printf("tavrin-view %s\n", VersionText(kProductVersion).c_str());
        return EXIT_SUCCESS;
    }
    std::vector<PictureMessage> first;
    if (option == "--tell" && words.size() == 2) {
        if (const auto message = PictureMessage::Parse(words[1])) first.push_back(*message);
    } else if (option.starts_with("-")) {
        std::fprintf(stderr, "tavrin-view: unknown option; see tavrin-view --help\n");
        return kWrongCall;
    } else {
        for (const std::string& file : words) first.push_back(Named(file));
    }
    if (!PictureSocket::HasDisplay(Environment::FromProcess())) {
        std::fputs("tavrin-view: there is no display\n", stderr);
        return EXIT_FAILURE;
    }
    if (first.empty()) first.emplace_back("comeup");
    return RunWindow(argc, argv, first);
}

// SPDX-License-Identifier: Apache-2.0
#include "Live.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "LineInbox.h"
#include "LivePictures.h"
#include "LiveRequest.h"

namespace tavrin::mray {

namespace {

void answer(const std::string& word, const std::string& id, std::string text = "") {
    for (char& c : text) {
        c = static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    std::printf("%s%s%s%s%s\n", word.c_str(), id.empty() ? "" : " ", id.c_str(), text.empty() ? "" : " ",
                text.c_str());
    std::fflush(stdout);
}

// Answers a request while it is drawn.
class Answers : public LiveListener {
  public:
    Answers(const std::string& id, LineInbox& inbox) : id_(id), inbox_(inbox) {}
    void onProgram(bool isNew) override { answer("program", id_, isNew ? "new" : "kept"); }
    void onCoarse() override { answer("coarse", id_); }
    void onStep() override {
        const auto now = std::chrono::steady_clock::now();
        if (now - told_ > std::chrono::milliseconds(400)) {
            told_ = now;
            answer("alive", id_);
        }
    }
    bool isOutdated(std::chrono::milliseconds within) override { return inbox_.hasLine(within); }

  private:
    const std::string& id_;
    LineInbox& inbox_;
    std::chrono::steady_clock::time_point told_ = std::chrono::steady_clock::now();
};

void sayLines(const std::string& id, const std::string& text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        answer("say", id, text.substr(at, end - at));
        at = end + 1;
    }
}

void draw(const LiveRequest& request, LivePictures& pictures, LineInbox& inbox, const std::string& killFile) {
    Answers answers(request.id, inbox);
    Report report(true, killFile);
    if (!pictures.draw(request.options, answers, report)) {
        return answer("dropped", request.id);
    }
    if (pictures.strange() > 0) {
        answer("say", request.id,
               std::to_string(pictures.strange()) +
                   " samples of the surface are not numbers; they are drawn black");
    }
    if (request.options.timing) {
        answer("times", request.id, report.timingLine());
    }
    answer("picture", request.id);
}

void serve(const std::string& line, LivePictures& pictures, LineInbox& inbox, const std::string& killFile) {
    std::string id;
    try {
        const LiveRequest request = parseRequest(line);
        id = request.id;
        draw(request, pictures, inbox, killFile);
    } catch (const RequestError& error) {
        answer("failed", error.id.empty() ? "-" : error.id, error.what());
    } catch (const ShaderError& error) {
        sayLines(id, error.what());
        answer("refused", id);
    } catch (const Stopped&) {
        answer("failed", id, "stopped");
    } catch (const std::bad_alloc&) {
        answer("failed", id, "not enough memory; try a smaller size");
    } catch (const std::exception& error) {
        answer("failed", id, error.what());
    }
}

}  // namespace

void serveLive(int input, const std::string& killFile) {
    // What is changed all the time is to be compiled soon rather than well.
    setenv("GALLIVM_PERF", "nopt", 0);
    LineInbox inbox(input);
    const GlContext context;
    LivePictures pictures(context.gl());
    answer("ready", "");
    while (const auto line = inbox.wait()) {
        if (*line != "stop") {
            serve(*line, pictures, inbox, killFile);
        }
    }
}

}  // namespace tavrin::mray

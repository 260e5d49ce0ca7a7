#pragma once

#include <chrono>
#include <deque>
#include <string>
#include <vector>

#include "kel/outputs/live_sink.h"
#include "kel/workspace/field_pacer.h"
#include "kel/workspace/pen_times.h"
#include "kel/workspace/workspace.h"

namespace kel {

// The line at the bottom of the window: how the fields do, and what there is to tell.
class StatusLine {
public:
    using Clock = FieldPacer::Clock;

    void Tell(const std::string& news, Clock::time_point now);

    // What of the fields and the pictures is told.
    struct Figures {
        const FieldPacer& pacer;
        const SecondRate& pictures;  // in which something changed
        const PenTimes& pen;
        std::vector<LiveFigures> streams;
    };
    void Show(Workspace& workspace, const Figures& figures, WindowSize window, Clock::time_point now);

    // The news over the picture's lower left corner, for some seconds each.
    void ShowNews(WindowSize window, Clock::time_point now);

private:
    struct News {
        std::string text;
        Clock::time_point until;
    };
    std::deque<News> m_news;
};

}  // namespace kel

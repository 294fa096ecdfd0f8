// Process start to the splash painted on the screen, for real zarvent
// executables, so that the build folder's program and an installed one can
// be set side by side:
//   bench_startup_installed [runs] EXECUTABLE...       needs an X display
// e.g. cmake --install build --prefix /tmp/z &&
//      build/bench/bench_startup_installed 10 build/zarvent /tmp/z/bin/zarvent
// The executables take turns. Each run forks and starts one, watches the X
// server for its splash-sized window and reads the window's middle row back
// until the picture's colours are there: the figure is fork to that moment,
// dynamic loading, finding the pictures and the X round trips included.
// bench_startup gives the same figure from inside the process.

#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <unordered_set>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// The splash's picture has hundreds of colours in its middle row; an
// unpainted window has one or two.
bool painted(xcb_connection_t *c, xcb_window_t w, int width, int height)
{
    xcb_get_image_reply_t *image = xcb_get_image_reply(
        c, xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, w, 0, static_cast<int16_t>(height / 2),
                         static_cast<uint16_t>(width), 1, ~0u),
        nullptr);
    if (!image)
        return false; // not viewable yet
    const int bytes = xcb_get_image_data_length(image);
    const uint8_t *data = xcb_get_image_data(image);
    std::unordered_set<uint32_t> colours;
    for (int i = 0; i + 3 < bytes; i += 4)
        colours.insert(static_cast<uint32_t>(data[i]) | data[i + 1] << 8 | data[i + 2] << 16);
    std::free(image);
    return colours.size() > 16;
}

// Milliseconds from fork to the painted splash; negative when it never came.
double oneRun(xcb_connection_t *c, const char *program)
{
    const auto t0 = Clock::now();
    const pid_t pid = ::fork();
    if (pid == 0) {
        const int null = ::open("/dev/null", O_WRONLY);
        ::dup2(null, 1);
        ::dup2(null, 2);
        ::execl(program, program, static_cast<char *>(nullptr));
        ::_exit(127);
    }
    std::vector<xcb_window_t> candidates;
    std::vector<std::pair<int, int>> sizes;
    double ms = -1;
    while (Clock::now() - t0 < std::chrono::seconds(10) && ms < 0) {
        xcb_flush(c);
        while (xcb_generic_event_t *e = xcb_poll_for_event(c)) {
            if ((e->response_type & ~0x80) == XCB_CREATE_NOTIFY) {
                auto *created = reinterpret_cast<xcb_create_notify_event_t *>(e);
                if (created->width >= 100 && created->height >= 100) {
                    candidates.push_back(created->window);
                    sizes.emplace_back(created->width, created->height);
                }
            }
            std::free(e);
        }
        for (size_t i = 0; i < candidates.size() && ms < 0; ++i) {
            if (painted(c, candidates[i], sizes[i].first, sizes[i].second))
                ms = std::chrono::duration<double, std::milli>(Clock::now() - t0).count();
        }
        if (ms < 0)
            ::usleep(500);
    }
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
    ::usleep(200000); // the window manager lets the window go before the next run
    return ms;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_startup_installed RUNS EXECUTABLE...\n");
        return 2;
    }
    const int runs = std::max(1, std::atoi(argv[1]));
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) {
        std::fprintf(stderr, "bench_startup_installed: needs an X display\n");
        return 2;
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(c, root, XCB_CW_EVENT_MASK, &mask);

    std::vector<std::vector<double>> ms(static_cast<size_t>(argc - 2));
    oneRun(c, argv[2]); // a first run warms the file cache for all
    for (int i = 0; i < runs; ++i) {
        for (int p = 2; p < argc; ++p) {
            const double t = oneRun(c, argv[p]);
            if (t < 0) {
                std::printf("%s: the splash was never painted\n", argv[p]);
                return 1;
            }
            ms[static_cast<size_t>(p - 2)].push_back(t);
        }
    }
    std::printf("process start to the splash painted on the screen, %d runs each, in turns:\n", runs);
    for (int p = 2; p < argc; ++p) {
        std::vector<double> v = ms[static_cast<size_t>(p - 2)];
        std::sort(v.begin(), v.end());
        const double median = v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
        std::printf("  %s: median %.1f ms (min %.1f, max %.1f)\n", argv[p], median, v.front(), v.back());
    }
    xcb_disconnect(c);
    return 0;
}

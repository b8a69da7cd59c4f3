// Registry, menus, texts and saved settings of the frameworks.
#include <gtest/gtest.h>

#include "config/text_cursor.h"
#include "errors/exception.h"
#include "platform/os/thread_pool.h"
#include "platform/parallel/menus.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/parallel/registry.h"
#include "platform/parallel/serial_parallelizer.h"
#include "platform/parallel/thread_priority.h"
#include "support/console.h"
#include "support/fatal.h"
#include "support/messages.h"

namespace {

using kelvara_test::message_of;
using kelvara_test::printed_by;

const bool has_thread_pool = qmp::os::system_thread_pool() != nullptr;

TEST(ParallelizerRegistry, MakesFrameworksByKey) {
    EXPECT_STREQ(qmp::make_parallelizer("none")->get_display_name(), "None (No Multi-threading)");
    EXPECT_STREQ(qmp::make_parallelizer("cppasync")->get_display_name(), "C++ std::async()");
    EXPECT_STREQ(qmp::make_parallelizer("spawn")->get_display_name(), "Thread Spawn (1 Thread/Task)");
    EXPECT_STREQ(qmp::make_parallelizer("pushpool")->get_display_name(), "Push Pool");
    for (const char* key : {"none", "cppasync", "spawn", "pushpool"})
        EXPECT_STREQ(qmp::make_parallelizer(key)->get_type_name(), key);
}

TEST(ParallelizerRegistry, RefusesUnknownKeys) {
    EXPECT_EQ(message_of<qmp::InvalidParametersException>([] { qmp::make_parallelizer("PushPool"); }),
              "Invalid Parallel Framework: PushPool");
    EXPECT_EQ(message_of<qmp::InvalidParametersException>([] { qmp::make_parallelizer(""); }),
              "Invalid Parallel Framework: ");
}

TEST(ParallelizerRegistry, ListsTheFrameworksInMenuOrder) {
    std::vector<std::string> names = {"None (No Multi-threading)", "C++ std::async()",
                                      "Thread Spawn (1 Thread/Task)", "Push Pool"};
    if (has_thread_pool) names.emplace_back("Windows Thread Pool");
    EXPECT_EQ(qmp::parallelizer_display_names(), names);
    std::vector<std::string> keys = {"none", "cppasync", "spawn", "pushpool"};
    if (has_thread_pool) keys.emplace_back("winpool");
    EXPECT_EQ(qmp::parallelizer_keys(), keys);
}

TEST(ParallelizerRegistry, KnowsTheThreadPoolWhereTheSystemHasOne) {
    if (has_thread_pool) {
        EXPECT_STREQ(qmp::make_parallelizer("winpool")->get_display_name(), "Windows Thread Pool");
        EXPECT_STREQ(qmp::make_parallelizer_by_number(4)->get_type_name(), "winpool");
    } else {
        EXPECT_EQ(message_of<qmp::InvalidParametersException>([] { qmp::make_parallelizer("winpool"); }),
                  "Invalid Parallel Framework: winpool");
    }
}

TEST(ParallelizerRegistry, TheDefaultIsARandomizedPushPoolWithoutLimit) {
    EXPECT_EQ(qmp::make_default_parallelizer()->to_string(8), "Push Pool  ->  8 / ?  (randomization on)");
}

#if GTEST_HAS_DEATH_TEST
class UnusedFactory : public qmp::ParallelizerFactory {
  public:
    const char* get_display_name() const override { return "Unused"; }
    std::unique_ptr<qmp::BasicParallelizer> create() const override { return nullptr; }
};

TEST(ParallelizerRegistryDeathTest, AKeyRegisteredTwiceEndsTheProgram) {
    EXPECT_FATAL(qmp::register_parallelizer("none", std::make_unique<UnusedFactory>()),
                 "\nDuplicate Framework Type\n");
}
#endif

TEST(TaskDecomposition, LiesBetween1And65536) {
    EXPECT_EQ(qmp::checked_task_decomposition(1), 1u);
    EXPECT_EQ(qmp::checked_task_decomposition(65536), 65536u);
    for (const std::uint64_t wrong : {std::uint64_t{0}, std::uint64_t{65537}, ~std::uint64_t{0}}) {
        EXPECT_EQ(
            message_of<qmp::InvalidParametersException>([&] { qmp::checked_task_decomposition(wrong); }),
            "Task decomposition must be between 1 and 65,536.");
    }
}

TEST(TaskDecomposition, ThePromptRepeatsUntilTheAnswerIsInRange) {
    const kelvara_test::FedInput typed("0\n65537\n-1\nabc\n65536\n");
    std::uint64_t answer = 0;
    const std::string text = printed_by([&] { answer = qmp::ask_task_decomposition(); });
    EXPECT_EQ(answer, 65536u);
    const std::string again = "Task Decomposition: \nPlease choose a number between 1 and 65,536.\n";
    EXPECT_EQ(text,
              "\n\nTarget Task Decomposition\n\n"
              "In order to parallelize a task, it must be decomposed to smaller tasks.\n"
              "However, decomposing tasks incurs CPU and memory overhead.\n\n"
              "  - With fewer tasks, you have less overhead, but you may not achieve high\n"
              "    utilization of the processor cores.\n"
              "  - With more tasks, you have more overhead, but better CPU utilization.\n\n"
              "At minimum value, this should be at least the # of logical cores. But it may\n"
              "be optimal to go even higher. This is known as \"over-decomposition\".\n\n" +
                  again + again + again + again + "Task Decomposition: ");
}

TEST(Summary, NamesTasksAndLimit) {
    qmp::SerialParallelizer none;
    EXPECT_EQ(none.to_string(3), "None (No Multi-threading)  ->  3 / ?");
    EXPECT_EQ(printed_by([&] { none.print_summary(3); }), "None (No Multi-threading)  ->  3 / ?\n");
    qmp::PushPoolParallelizer pool;
    pool.threads = 4;
    pool.set_randomize(false);
    EXPECT_EQ(pool.to_string(16), "Push Pool  ->  16 / 4  (randomization off)");
    EXPECT_EQ(printed_by([&] { pool.print_summary(16); }), "Push Pool  ->  16 / 4  (randomization off)\n");
}

TEST(PushPoolMenu, ShowsLimitAndRandomization) {
    qmp::PushPoolParallelizer pool;
    std::uint64_t highest = 0;
    EXPECT_EQ(printed_by([&] { highest = pool.print_menu_options(); }),
              "   4    Worker Threads:         Unlimited\n"
              "   5    Thread Randomization:   Enabled\n\n");
    EXPECT_EQ(highest, 5u);
    pool.threads = 12;
    pool.set_randomize(false);
    EXPECT_EQ(printed_by([&] { pool.print_menu_options(); }),
              "   4    Worker Threads:         12\n"
              "   5    Thread Randomization:   Disabled\n\n");
    EXPECT_EQ(qmp::SerialParallelizer().print_menu_options(), 3u);
}

TEST(PushPoolMenu, TheWorkerLimitIsAtMost65536) {
    qmp::PushPoolParallelizer pool;
    const kelvara_test::FedInput typed("70000\n-5\n65536\n0\n");
    EXPECT_EQ(printed_by([&] { pool.handle_menu_option(4); }), "Threads (0 for unlimited threads): ");
    EXPECT_EQ(pool.threads, 65536u);
    printed_by([&] { pool.handle_menu_option(4); });
    EXPECT_EQ(pool.threads, 65536u);
    printed_by([&] { pool.handle_menu_option(4); });
    EXPECT_EQ(pool.threads, 0u);
    EXPECT_EQ(pool.to_string(1), "Push Pool  ->  1 / ?  (randomization on)");
}

TEST(PushPoolMenu, OptionFiveToggles) {
    qmp::PushPoolParallelizer pool;
    pool.handle_menu_option(5);
    EXPECT_FALSE(pool.randomize());
    pool.handle_menu_option(5);
    EXPECT_TRUE(pool.randomize());
}

TEST(FrameworkMenu, ListsAndMakesTheChosenOne) {
    const kelvara_test::FedInput typed("5\n-1\n3\n");
    std::unique_ptr<qmp::BasicParallelizer> chosen;
    EXPECT_EQ(printed_by([&] { chosen = qmp::select_parallelizer(); }),
              std::string("Select a Parallel Framework:\n\n"
                          "   0    None (No Multi-threading)\n"
                          "   1    C++ std::async()\n"
                          "   2    Thread Spawn (1 Thread/Task)\n"
                          "   3    Push Pool\n") +
                  (has_thread_pool ? "   4    Windows Thread Pool\n" : "") + "\noption: option: option: ");
    EXPECT_STREQ(chosen->get_type_name(), "pushpool");
}

TEST(ParallelizationMenu, ShowsTheSettingsAndCarriesOutTheOptions) {
    const std::string cores = std::to_string(qmp::default_task_decomposition());
    std::uint64_t tasks = 77;
    std::unique_ptr<qmp::BasicParallelizer> framework = std::make_unique<qmp::SerialParallelizer>();
    const kelvara_test::FedInput typed("0\n");
    EXPECT_EQ(printed_by([&] { qmp::edit_parallelization(tasks, framework); }),
              "\n\nParallelization Mode:\n\n"
              "The purpose of this feature is to test the performance of various parallel\n"
              "computing frameworks.\n\n"
              "If you don't know what you're doing, you probably don't want to mess with\n"
              "these settings. The default settings are auto-tuned for your system which\n"
              "has " +
                  cores +
                  " logical cores.\n\n"
                  "Current Settings: (select option # to change setting)\n\n"
                  "   1    Restore defaults for " +
                  cores +
                  " logical cores.\n\n"
                  "   2    Task Decomposition:     77\n"
                  "   3    Framework:              None (No Multi-threading)\n"
                  "   0    Done!\n\n"
                  "option: ");
    EXPECT_EQ(tasks, 77u);

    // Framework, its own option, tasks; 4 was no option before the Push Pool was chosen.
    const kelvara_test::FedInput typed_2("4\n3\n3\n4\n9\n2\n33\n0\n");
    printed_by([&] { qmp::edit_parallelization(tasks, framework); });
    EXPECT_EQ(framework->to_string(tasks), "Push Pool  ->  33 / 9  (randomization on)");

    const kelvara_test::FedInput typed_3("1\n0\n");
    printed_by([&] { qmp::edit_parallelization(tasks, framework); });
    EXPECT_EQ(framework->to_string(tasks), "Push Pool  ->  " + cores + " / ?  (randomization on)");
}

TEST(ParallelizationMenu, OffersTheOptionsOfTheFrameworkAtHand) {
    std::uint64_t tasks = 5;
    std::unique_ptr<qmp::BasicParallelizer> framework = std::make_unique<qmp::SerialParallelizer>();
    // The asynchronous calls have one option, the thread spawn none.
    const kelvara_test::FedInput typed("3\n1\n5\n4\n0\n");
    const std::string text = printed_by([&] { qmp::edit_parallelization(tasks, framework); });
    EXPECT_EQ(framework->to_string(tasks), "C++ std::async()  ->  5 / ?  (async | deferred)");
    EXPECT_NE(text.find("   3    Framework:              C++ std::async()\n"
                        "   4    Launch Policy:          std::launch::async | std::launch::deferred\n\n"
                        "   0    Done!\n\noption: "),
              std::string::npos);

    const kelvara_test::FedInput typed_2("3\n2\n4\n0\n");
    const std::string text_2 = printed_by([&] { qmp::edit_parallelization(tasks, framework); });
    EXPECT_EQ(framework->to_string(tasks), "Thread Spawn (1 Thread/Task)  ->  5 / ?");
    EXPECT_NE(text_2.find("   3    Framework:              Thread Spawn (1 Thread/Task)\n"
                          "   0    Done!\n\noption: option: "),
              std::string::npos);
}

TEST(FrameworkSettings, AreOneLineEach) {
    qmp::PushPoolParallelizer pool;
    pool.threads = 6;
    EXPECT_EQ(pool.print_settings(), "    worker threads:\t6\r\n    randomization :\t1\r\n");
    EXPECT_EQ(qmp::SerialParallelizer().print_settings(), "");
}

TEST(FrameworkSettings, AreReadInOrder) {
    qmp::PushPoolParallelizer pool;
    qmp::TextCursor cursor("6 0 99");
    pool.load_settings(cursor);
    EXPECT_EQ(pool.threads, 6u);
    EXPECT_FALSE(pool.randomize());
    EXPECT_EQ(cursor.read_integer(), 99);

    qmp::PushPoolParallelizer copy;
    qmp::TextCursor nonzero("0 7");
    copy.load_settings(nonzero);
    EXPECT_TRUE(copy.randomize());
}

TEST(FrameworkSettings, ComeBackAsTheyWerePrinted) {
    qmp::PushPoolParallelizer pool;
    pool.threads = 6;
    pool.set_randomize(false);
    const std::string text = pool.print_settings();
    qmp::TextCursor cursor(text);
    qmp::PushPoolParallelizer copy;
    copy.load_settings(cursor);
    EXPECT_EQ(copy.to_string(1), pool.to_string(1));
}

TEST(FrameworkSettings, AThreadLimitOutOfRangeIsCut) {
    qmp::PushPoolParallelizer pool;
    qmp::TextCursor large("70000 1");
    pool.load_settings(large);
    EXPECT_EQ(pool.threads, 65536u);
    qmp::TextCursor negative("-3 1");
    pool.load_settings(negative);
    EXPECT_EQ(pool.threads, 0u);
}

TEST(ThreadPriority, UnknownNumbersAreOnlyAWarning) {
    for (const std::int64_t wrong : {-4, 4, 100}) {
        EXPECT_EQ(printed_by([&] { qmp::set_thread_priority(wrong); }),
                  "\nWarning: Ignoring unknown priority number.\n");
    }
}

}  // namespace

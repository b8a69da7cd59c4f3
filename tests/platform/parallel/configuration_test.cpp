// The frameworks in a configuration and in a settings record.
#include <gtest/gtest.h>

#include "errors/exception.h"
#include "platform/parallel/async_parallelizer.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/parallel/registry.h"
#include "platform/parallel/settings.h"
#include "support/messages.h"

namespace {

using kelvara_test::message_of;
using qmp::notation::Object;

std::vector<std::string> keys_of(const Object& object) {
    std::vector<std::string> keys;
    for (const auto& member : object.members()) keys.push_back(member.key);
    return keys;
}

std::string refusal_of(const Object& config) {
    try {
        qmp::read_parallel_settings(config);
    } catch (const qmp::StringException& exception) {
        return std::string(exception.get_name()) + ": " + exception.message();
    }
    return "nothing was thrown";
}

// A configuration of the Push Pool, with one integer or text in another member's place.
struct Members {
    std::int64_t tasks = 8;
    std::string framework = "pushpool";
    std::int64_t threads = 3;
    std::string randomization = "false";

    Object object() const {
        Object config;
        config.insert_integer("TaskDecomposition", tasks);
        config.insert_string("Framework", framework);
        config.insert_integer("WorkerThreads", threads);
        config.insert_string("Randomization", randomization);
        return config;
    }
};

TEST(ParallelConfiguration, IsWrittenInOrder) {
    qmp::PushPoolParallelizer pool;
    pool.threads = 12;
    const Object config = qmp::write_parallel_settings(16, pool);
    EXPECT_EQ(config.to_text(0),
              "{\r\n    TaskDecomposition : 16\r\n    Framework : \"pushpool\"\r\n"
              "    WorkerThreads : 12\r\n    Randomization : \"true\"\r\n}\r\n");
    qmp::AsyncParallelizer async;
    async.handle_menu_option(4);
    EXPECT_EQ(qmp::write_parallel_settings(1, async).to_text(0),
              "{\r\n    TaskDecomposition : 1\r\n    Framework : \"cppasync\"\r\n"
              "    AsyncOnly : \"false\"\r\n}\r\n");
    for (const char* key : {"none", "spawn"}) {
        EXPECT_EQ(keys_of(qmp::write_parallel_settings(1, *qmp::make_parallelizer(key))),
                  (std::vector<std::string>{"TaskDecomposition", "Framework"}));
    }
}

TEST(ParallelConfiguration, OfEveryFrameworkComesBack) {
    for (const std::string& key : qmp::parallelizer_keys()) {
        const auto framework = qmp::make_parallelizer(key);
        framework->handle_menu_option(key == "pushpool" ? 5 : 4);
        if (key == "pushpool") framework->threads = 65536;
        const Object config = qmp::write_parallel_settings(65536, *framework);
        const qmp::ParallelSettings settings = qmp::read_parallel_settings(config);
        EXPECT_EQ(settings.task_decomposition, 65536u);
        EXPECT_STREQ(settings.framework->get_type_name(), key.c_str());
        EXPECT_EQ(settings.framework->to_string(1), framework->to_string(1));
    }
}

TEST(ParallelConfiguration, ReadsThePoolsKeys) {
    const qmp::ParallelSettings settings = qmp::read_parallel_settings(Members{}.object());
    EXPECT_EQ(settings.framework->to_string(settings.task_decomposition),
              "Push Pool  ->  8 / 3  (randomization off)");
}

TEST(ParallelConfiguration, AThreadLimitOutOfRangeIsCut) {
    EXPECT_EQ(qmp::read_parallel_settings(Members{.threads = 70000}.object()).framework->threads, 65536u);
    EXPECT_EQ(qmp::read_parallel_settings(Members{.threads = -1}.object()).framework->threads, 0u);
}

TEST(ParallelConfiguration, ATaskDecompositionOutOfRangeIsRefused) {
    for (const std::int64_t wrong : {std::int64_t{0}, std::int64_t{65537}, std::int64_t{-1}, INT64_MIN}) {
        EXPECT_EQ(refusal_of(Members{.tasks = wrong}.object()),
                  "InvalidParametersException: Task decomposition must be between 1 and 65,536.");
    }
    for (const std::int64_t right : {1, 65536}) {
        EXPECT_EQ(qmp::read_parallel_settings(Members{.tasks = right}.object()).task_decomposition,
                  static_cast<std::uint64_t>(right));
    }
}

TEST(ParallelConfiguration, AnUnknownFrameworkIsRefused) {
    EXPECT_EQ(refusal_of(Members{.framework = "Push Pool"}.object()),
              "InvalidParametersException: Invalid Parallel Framework: Push Pool");
}

TEST(ParallelConfiguration, ReportsTheFirstMissingKey) {
    Object config;
    EXPECT_EQ(refusal_of(config), "ParseException: Key not found: TaskDecomposition");
    config.insert_integer("TaskDecomposition", 2);
    EXPECT_EQ(refusal_of(config), "ParseException: Key not found: Framework");
    config.insert_string("Framework", "pushpool");
    EXPECT_EQ(refusal_of(config), "ParseException: Key not found: WorkerThreads");
    config.insert_integer("WorkerThreads", 2);
    EXPECT_EQ(refusal_of(config), "ParseException: Key not found: Randomization");

    Object async;
    async.insert_integer("TaskDecomposition", 2);
    async.insert_string("Framework", "cppasync");
    EXPECT_EQ(refusal_of(async), "ParseException: Key not found: AsyncOnly");
}

TEST(ParallelConfiguration, NamesItselfInTypeErrors) {
    Object tasks;
    tasks.insert_string("TaskDecomposition", "2");
    EXPECT_EQ(refusal_of(tasks), "ParseException: Parallel Framework: Expected Integer, got String.");
    Object framework;
    framework.insert_integer("TaskDecomposition", 2);
    framework.insert_integer("Framework", 3);
    EXPECT_EQ(refusal_of(framework), "ParseException: Parallel Framework: Expected String, got Integer.");
    Object threads;
    threads.insert_integer("TaskDecomposition", 2);
    threads.insert_string("Framework", "pushpool");
    threads.insert_string("WorkerThreads", "all");
    EXPECT_EQ(refusal_of(threads), "ParseException: Parallel Framework: Expected Integer, got String.");
    Object flag;
    flag.insert_integer("TaskDecomposition", 2);
    flag.insert_string("Framework", "cppasync");
    flag.insert("AsyncOnly", std::make_unique<qmp::notation::Array>());
    EXPECT_EQ(refusal_of(flag), "ParseException: Parallel Framework: Expected String, got Array.");
    EXPECT_EQ(refusal_of(Members{.randomization = "True"}.object()),
              "ParseException: Expected true or false.");
}

TEST(ParallelConfiguration, TakesNumbersForFlags) {
    for (const std::int64_t number : {0, 1, -2}) {
        Object config;
        config.insert_integer("AsyncOnly", number);
        qmp::AsyncParallelizer async;
        async.read_config(config);
        EXPECT_EQ(async.async_only(), number != 0);
    }
}

qmp::ParallelSettings load(const std::string& record) {
    qmp::TextCursor cursor(record);
    auto settings = qmp::load_parallel_settings(cursor);
    EXPECT_EQ(cursor.rest(), "");
    return settings;
}

TEST(ParallelRecord, BeginsWithTasksAndName) {
    EXPECT_EQ(qmp::print_parallel_settings(5, *qmp::make_parallelizer("none")),
              "tds               :\t5\r\nframework         :\tnone\r\n");
    EXPECT_EQ(qmp::print_parallel_settings(5, *qmp::make_parallelizer("pushpool")),
              "tds               :\t5\r\nframework         :\tpushpool\r\n"
              "    worker threads:\t0\r\n    randomization :\t1\r\n");
}

TEST(ParallelRecord, ComesBackAsItWasWritten) {
    for (const std::string& key : qmp::parallelizer_keys()) {
        for (const std::uint64_t tasks : {1, 65'536}) {
            const auto framework = qmp::make_parallelizer(key);
            framework->handle_menu_option(key == "pushpool" ? 5 : 4);
            const std::string record = qmp::print_parallel_settings(tasks, *framework);
            const qmp::ParallelSettings copy = load(record);
            EXPECT_EQ(copy.task_decomposition, tasks);
            EXPECT_STREQ(copy.framework->get_type_name(), key.c_str());
            EXPECT_EQ(qmp::print_parallel_settings(tasks, *copy.framework), record);
        }
    }
}

TEST(ParallelRecord, RefusesWhatIsWrong) {
    for (const char* tasks : {"0", "65537", "-1"}) {
        EXPECT_EQ(message_of<qmp::InvalidParametersException>(
                      [&] { load("t:\t" + std::string(tasks) + "\r\nf:\tnone\r\n"); }),
                  "Task decomposition must be between 1 and 65,536.");
    }
    EXPECT_EQ(message_of<qmp::InvalidParametersException>([] { load("t:\t1\r\nf:\tNone\r\n"); }),
              "Invalid Parallel Framework: None");
    for (const char* record :
         {"", "t:\t12x\r\nf:\tnone\r\n", "t 1\r\nf:\tnone\r\n", "t:\t1\r\nf:\tpushpool\r\n"})
        EXPECT_EQ(message_of<qmp::ParseException>([&] { load(record); }), "Unexpected end of string.")
            << record;
}

}  // namespace

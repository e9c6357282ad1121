#include <optional>

#include "platform/programs.h"
#include "tests/traces/trace_fixture.h"

namespace vorthmere::update::traces {
namespace {

const HANDLE kProcess = fakeHandle(0x1000);
const HANDLE kThread = fakeHandle(0x1004);
const HANDLE kOutput = fakeHandle(0x1008);

/// What CreateProcessW was asked for.
struct AskedStart {
    std::wstring program;
    std::wstring commandLine;
    std::wstring folder;
    BOOL inheritsHandles = FALSE;
    DWORD flags = 0;
    STARTUPINFOW startup{};
};
std::optional<AskedStart> askedStart;
DWORD startError = 0;

BOOL WINAPI createProcess(const wchar_t* program, wchar_t* commandLine, SECURITY_ATTRIBUTES* process,
                          SECURITY_ATTRIBUTES* thread, BOOL inherits, DWORD flags, void* environment,
                          const wchar_t* folder, STARTUPINFOW* startup, PROCESS_INFORMATION* created) {
    EXPECT_EQ(process, nullptr);
    EXPECT_EQ(thread, nullptr);
    EXPECT_EQ(environment, nullptr);
    askedStart = {program, commandLine, folder, inherits, flags, *startup};
    *created = {kProcess, kThread, 1, 2};
    SetLastError(startError);
    return startError == 0;
}

BOOL WINAPI closeHandle(HANDLE handle) {
    log().push_back(handle == kProcess  ? "close process"
                    : handle == kThread ? "close thread"
                    : handle == kOutput ? "close output"
                                        : "close something");
    return TRUE;
}

class ProgramTrace : public TraceTest {
protected:
    ProgramTrace() {
        askedStart.reset();
        startError = 0;
    }
    Replaced<decltype(traced_CreateProcessW)> creation{traced_CreateProcessW, createProcess};
    Replaced<decltype(traced_CloseHandle)> closing{traced_CloseHandle, closeHandle};
    FileHandle output{kOutput};
    std::error_code failure{23, std::system_category()};
};

TEST_F(ProgramTrace, ACapturedProgramHasNoWindowAndInheritsItsOutput) {
    {
        const ProcessHandle process = startCaptured(L"C:\\tool.exe", L"\"tool\" -x", L"C:\\work", output, failure);
        EXPECT_EQ(process.get(), kProcess);
        EXPECT_FALSE(failure);
        EXPECT_THAT(log(), ElementsAre("close thread"));
    }
    EXPECT_THAT(log(), ElementsAre("close thread", "close process"));
    ASSERT_TRUE(askedStart);
    EXPECT_EQ(askedStart->program, L"C:\\tool.exe");
    EXPECT_EQ(askedStart->commandLine, L"\"tool\" -x");
    EXPECT_EQ(askedStart->folder, L"C:\\work");
    EXPECT_EQ(askedStart->flags, static_cast<DWORD>(CREATE_NO_WINDOW));
    EXPECT_TRUE(askedStart->inheritsHandles);
    EXPECT_EQ(askedStart->startup.cb, sizeof(STARTUPINFOW));
    EXPECT_EQ(askedStart->startup.dwFlags, static_cast<DWORD>(STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW));
    EXPECT_EQ(askedStart->startup.wShowWindow, SW_HIDE);
    EXPECT_EQ(askedStart->startup.hStdOutput, kOutput);
    EXPECT_EQ(askedStart->startup.hStdError, kOutput);
    EXPECT_EQ(askedStart->startup.hStdInput, GetStdHandle(STD_INPUT_HANDLE));
}

TEST_F(ProgramTrace, AStartedProgramInheritsNothingAndHasTheDefaultErrorMode) {
    EXPECT_FALSE(startProgram(L"C:\\game.exe", L"\"game\"", L"C:\\work"));
    ASSERT_TRUE(askedStart);
    EXPECT_EQ(askedStart->program, L"C:\\game.exe");
    EXPECT_EQ(askedStart->commandLine, L"\"game\"");
    EXPECT_EQ(askedStart->folder, L"C:\\work");
    EXPECT_EQ(askedStart->flags, static_cast<DWORD>(CREATE_DEFAULT_ERROR_MODE));
    EXPECT_FALSE(askedStart->inheritsHandles);
    EXPECT_EQ(askedStart->startup.cb, sizeof(STARTUPINFOW));
    EXPECT_EQ(askedStart->startup.dwFlags, 0u);
    EXPECT_THAT(log(), ElementsAre("close thread", "close process"));
}

TEST_F(ProgramTrace, AProgramThatIsNotStartedTellsWhy) {
    startError = ERROR_BAD_EXE_FORMAT;
    EXPECT_EQ(startProgram(L"C:\\game.exe", L"\"game\"", L"C:\\work").value(), ERROR_BAD_EXE_FORMAT);
    static_cast<void>(startCaptured(L"C:\\tool.exe", L"\"tool\"", L"C:\\work", output, failure));
    EXPECT_EQ(failure.value(), ERROR_BAD_EXE_FORMAT);
}

TEST_F(TraceTest, OnlyThePipesWriteEndIsInherited) {
    const Replaced asking(traced_SetHandleInformation, [](HANDLE handle, DWORD mask, DWORD flags) -> BOOL {
        log().push_back("inherit " + std::to_string(mask) + " " + std::to_string(flags));
        return SetHandleInformation(handle, mask, flags);
    });
    Pipe pipe;
    EXPECT_FALSE(openPipe(pipe));
    EXPECT_THAT(log(), ElementsAre("inherit 1 0"));
    DWORD flags = 0;
    ASSERT_TRUE(GetHandleInformation(pipe.readEnd.get(), &flags));
    EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, 0u);
    ASSERT_TRUE(GetHandleInformation(pipe.writeEnd.get(), &flags));
    EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, static_cast<DWORD>(HANDLE_FLAG_INHERIT));
}

TEST_F(TraceTest, APipeWhoseReadEndWouldBeInheritedIsAFailure) {
    const Replaced asking(traced_SetHandleInformation, [](HANDLE, DWORD, DWORD) -> BOOL {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    });
    Pipe pipe;
    EXPECT_EQ(openPipe(pipe).value(), ERROR_INVALID_HANDLE);
}

TEST_F(TraceTest, AProcessIsOpenedForWaitingAlone) {
    const Replaced opening(traced_OpenProcess, [](DWORD access, BOOL inherits, DWORD id) -> HANDLE {
        log().push_back("open " + std::to_string(access == SYNCHRONIZE) + std::to_string(inherits) + " " +
                        std::to_string(id));
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    });
    std::error_code failure;
    EXPECT_FALSE(openProcess(4321, failure));
    EXPECT_EQ(failure.value(), ERROR_ACCESS_DENIED);
    EXPECT_THAT(log(), ElementsAre("open 10 4321"));
}

TEST_F(TraceTest, AWaitThatFailsOrTakesTooLongIsNoEnd) {
    static DWORD answer = 0;
    const Replaced waiting(traced_WaitForSingleObject, [](HANDLE, DWORD milliseconds) -> DWORD {
        log().push_back("wait " + std::to_string(milliseconds));
        return answer;
    });
    const ProcessHandle none;
    answer = WAIT_OBJECT_0;
    EXPECT_TRUE(waitForEnd(none, 120000));
    answer = WAIT_TIMEOUT;
    EXPECT_FALSE(waitForEnd(none, 0));
    answer = WAIT_FAILED;
    EXPECT_FALSE(waitForEnd(none, kWaitForever));
    EXPECT_THAT(log(), ElementsAre("wait 120000", "wait 0", "wait 4294967295"));
}

TEST_F(TraceTest, AnExitCodeThatCannotBeReadIsUnknown) {
    const Replaced asking(traced_GetExitCodeProcess, [](HANDLE, DWORD*) -> BOOL { return FALSE; });
    EXPECT_EQ(exitCodeOf(ProcessHandle(), 77), 77u);
}

TEST_F(TraceTest, TheSystemsFolderHasAtMost260Characters) {
    static UINT length = 0;
    const Replaced asking(traced_GetSystemDirectoryW, [](wchar_t* folder, UINT size) -> UINT {
        EXPECT_EQ(size, 261u);
        if (length < size) std::fill_n(folder, length, L'f');
        return length;
    });
    length = 0;
    EXPECT_EQ(systemFolder(), std::filesystem::path());
    length = 260;
    EXPECT_EQ(systemFolder(), std::wstring(260, L'f'));
    length = 261;
    EXPECT_EQ(systemFolder(), std::filesystem::path());
}

}  // namespace
}  // namespace vorthmere::update::traces

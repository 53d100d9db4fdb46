#include "dap/program/debuggee.h"

#include <QUrl>
#include <csignal>

#include "base/overloaded.h"
#include "base/protocolescapes.h"

namespace Tamrix::Dap {

namespace {

/// A path as one word of a command: white space, at which lines are split and folded, is escaped by
/// its number.
QByteArray pathWord(const QString& path) {
    QString word;
    for (const QChar character : path) {
        if (character == '\\')
            word += QLatin1String("\\\\");
        else if (character.isSpace())
            word += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        else
            word += character;
    }
    return word.toUtf8();
}

/// How long a program may take from reading a command to running the code in it: a signal before
/// would end the run. In milliseconds, as the next one.
constexpr qint64 startOfCode = 250;
/// How often it is asked whether the program has read it.
constexpr int readInterval = 20;

const char* commandOf(Resume how) {
    switch (how) {
        case Resume::Continue:
            return "continue";
        case Resume::SkipError:
            return "continue skipCurrentError";
        case Resume::Next:
            return "next";
        case Resume::StepIn:
            return "step";
        case Resume::StepOut:
            return "return";
    }
    return "continue";
}

}  // namespace

Debuggee::Debuggee(std::unique_ptr<Program> program, Surroundings surroundings)
    : m_program(std::move(program)), m_surroundings(std::move(surroundings)) {
    for (Channel& channel : m_channels)
        channel.decoder.reset(QTextCodec::codecForName("UTF-8")->makeDecoder());
}

void Debuggee::receive() {
    for (const Program::Piece& piece : m_program->receive()) {
        const Stream stream = piece.isError ? Stream::Error : Stream::Output;
        for (const OutputPart& part : channel(stream).lines.add(piece.bytes)) {
            std::visit(
                Overloaded{[&](const ProtocolLine& line) { takeLine(line.text); },
                           [&](const ProgramOutput& output) { takeOutput(output.text, stream); }},
                part);
        }
    }
    if (m_program->exitCode()) {
        m_isStopped = false;
        for (const Stream stream : {Stream::Output, Stream::Error})
            takeOutput(channel(stream).lines.takeRest(), stream);
    }
}

void Debuggee::takeLine(const QByteArray& line) {
    if (const std::optional<Notice> notice = readNotice(line)) {
        m_surroundings.notice(*notice);
        return;
    }
    if (m_reader) {
        if ((*m_reader)(line))
            m_reader = nullptr;
        else if (readStop(line))
            // Code that is evaluated came to a stop of its own, which would wait for ever.
            m_program->write("continue\n");
        return;
    }
    if (std::optional<Stop> stop = readStop(line)) {
        m_isStopped = true;
        m_newStop = std::move(stop);
        return;
    }
    m_surroundings.output(QString::fromUtf8(line) + QLatin1Char('\n'), Stream::Error);
}

void Debuggee::takeOutput(const QByteArray& text, Stream stream) {
    const QString decoded = channel(stream).decoder->toUnicode(text);
    if (!decoded.isEmpty())
        m_surroundings.output(decoded, stream);
}

Outcome<> Debuggee::ask(const QByteArray& command, const AnswerReader& reader) {
    const auto ended = [] {
        return fail(FailureKind::Ended, QStringLiteral("the test run has ended"));
    };
    if (exitCode())
        return ended();
    if (!m_isStopped)
        return fail(FailureKind::NotReady, QStringLiteral("the script is running"));
    m_reader = &reader;
    m_program->write(command + '\n');
    while (m_reader) {
        receive();
        if (!m_reader)
            break;
        const bool goesOn = !exitCode() && m_surroundings.wait(endCodeInTime());
        if (!goesOn) {
            m_reader = nullptr;
            m_isAnswering = true;
            return ended();
        }
    }
    return {};
}

/// Ends code whose time is over, or whose end somebody wants. Gives in how many milliseconds to ask
/// again, -1 when only something that comes can change it.
int Debuggee::endCodeInTime() {
    if (!m_code || m_code->isEnded)
        return -1;
    if (!m_program->hasTakenInput())
        return readInterval;
    if (!m_code->time.isValid())
        m_code->time.start();
    qint64 end = startOfCode;
    if (!m_surroundings.wantsEnd()) {
        if (!m_code->limit)
            return -1;
        end = m_code->limit->count();
    }
    if (!m_code->time.hasExpired(end))
        return static_cast<int>(end - m_code->time.elapsed()) + 1;
    m_code->isEnded = true;
    interrupt();
    return -1;
}

Outcome<QByteArray> Debuggee::askBreakPoint(const QByteArray& command, const ScriptPlace& place) {
    const QByteArray okay = command + " ok: ";
    const QByteArray error = command + " error: ";
    QByteArray answer;
    const Outcome<> asked =
        ask(command + ' ' + pathWord(place.file) + ':' + QByteArray::number(place.line),
            [&](const QByteArray& line) {
                answer = line;
                return line.startsWith(okay) || line.startsWith(error);
            });
    if (!asked)
        return fail(asked.error());
    if (answer.startsWith(error))
        return fail(FailureKind::Refused, QString::fromUtf8(answer.mid(error.size())));
    return answer.mid(okay.size());
}

Outcome<bool> Debuggee::setBreakPoint(const ScriptPlace& place) {
    const Outcome<QByteArray> answer = askBreakPoint("break", place);
    if (!answer)
        return fail(answer.error());
    return answer->startsWith("Set buffered ");
}

Outcome<> Debuggee::deleteBreakPoint(const ScriptPlace& place) {
    const Outcome<QByteArray> answer = askBreakPoint("delete", place);
    if (!answer)
        return fail(answer.error());
    return {};
}

Outcome<QString> Debuggee::evaluate(const QString& code, Limit limit) {
    static const QByteArray s_word = QByteArrayLiteral("eval");
    static const QByteArray s_judgement = QByteArrayLiteral("@evaluation ");
    QString result;
    m_code = RunningCode{limit};
    Outcome<> asked =
        ask(s_word + ' ' + QUrl::toPercentEncoding(code), [&](const QByteArray& line) {
            result = QUrl::fromPercentEncoding(line.mid(s_word.size()));
            return line.startsWith(s_word);
        });
    m_code.reset();
    // A value and the message of an error look alike: another answer tells which it is.
    bool hasFailed = false;
    if (asked)
        asked = ask("print evaluation", [&](const QByteArray& line) {
            hasFailed = line == s_judgement + "failed";
            return line.startsWith(s_judgement);
        });
    if (!asked)
        return fail(asked.error());
    if (hasFailed)
        return fail(FailureKind::BadArgument, result);
    return result;
}

Outcome<std::vector<Binding>> Debuggee::variables(const QString& path) {
    std::vector<Binding> bindings;
    const QByteArray command =
        path.isEmpty() ? QByteArrayLiteral("print variables") : "print variables " + path.toUtf8();
    const Outcome<> asked = ask(command, [&](const QByteArray& line) {
        std::optional<std::vector<Binding>> listing = readListing(line);
        if (listing)
            bindings = std::move(*listing);
        return listing.has_value();
    });
    if (!asked)
        return fail(asked.error());
    return bindings;
}

Outcome<QString> Debuggee::currentFile() {
    static const QByteArray s_word = QByteArrayLiteral("@file ");
    QString file;
    const Outcome<> asked = ask("print file", [&](const QByteArray& line) {
        file = QString::fromUtf8(line.mid(s_word.size()));
        return line.startsWith(s_word);
    });
    if (!asked)
        return fail(asked.error());
    return file;
}

Outcome<> Debuggee::setMissingStepStops(bool on) {
    return ask(on ? "breakOnMissingStep true" : "breakOnMissingStep false",
               [](const QByteArray& line) { return line.startsWith("breakOnMissingStep "); });
}

Outcome<QByteArray> Debuggee::askSearch(const QByteArray& command, const QByteArray& arguments) {
    const QByteArray okay = command + " ok:";
    const QByteArray error = command + " error: ";
    QByteArray answer;
    const Outcome<> asked = ask(command + ' ' + arguments, [&](const QByteArray& line) {
        answer = line;
        return line.startsWith(okay) || line.startsWith(error);
    });
    if (!asked)
        return fail(asked.error());
    if (answer.startsWith(error))
        return fail(FailureKind::Refused, QString::fromUtf8(answer.mid(error.size())));
    return answer.mid(okay.size()).trimmed();
}

Outcome<QByteArray> Debuggee::searchState(const QByteArray& kind) {
    return askSearch("getInterpreterStateFor", kind);
}

Outcome<> Debuggee::setSearchState(const QByteArray& kind, const QByteArray& state) {
    const Outcome<QByteArray> answer =
        askSearch("setInterpreterStateFor", kind + ' ' + state.toPercentEncoding());
    if (!answer)
        return fail(answer.error());
    return {};
}

Outcome<std::vector<ScriptPlace>> Debuggee::callers() {
    std::vector<ScriptPlace> places;
    // A stack has no last line, so that another answer behind it tells where it ends.
    const Outcome<> asked = ask("backtrace\nprint line", [&](const QByteArray& line) {
        if (std::optional<ScriptPlace> place = readFrame(line))
            places.push_back(std::move(*place));
        return line.startsWith("@line ");
    });
    if (!asked)
        return fail(asked.error());
    return places;
}

void Debuggee::command(const QByteArray& line) {
    if (m_isStopped)
        m_program->write(line + '\n');
}

void Debuggee::setObjectNotFoundStops(bool on) {
    command(on ? "enableObjectNotFoundDebugging" : "enableObjectNotFoundDebugging false");
}

void Debuggee::setImageNotFoundStops(bool on) {
    command(on ? "enableImageNotFoundDebugging" : "enableImageNotFoundDebugging false");
}

void Debuggee::resume(Resume how) {
    command(commandOf(how));
    m_isStopped = false;
}

void Debuggee::quit() {
    // Who is still busy with a question reads no commands.
    if (m_isAnswering)
        terminate();
    else
        command("quit");
    m_isStopped = false;
}

void Debuggee::interrupt() {
    m_program->signal(SIGINT);
}

void Debuggee::terminate() {
    m_program->signal(SIGTERM);
}

}  // namespace Tamrix::Dap

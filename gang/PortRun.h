#pragma once

#include "gang/Assignment.h"
#include "gang/Judge.h"
#include "gang/ReadFileCheck.h"
#include "gang/RunFolder.h"
#include "gang/RunRecord.h"
#include "gang/RunState.h"
#include "gang/ToolProcess.h"

#include <QObject>
#include <QTimer>

#include <memory>

namespace gang
{

/// One device on one port, from the first try to the verdict. Each try is an upload and, with
/// --certify, a verification in a zserial process of its own.
class PortRun : public QObject
{
    Q_OBJECT

public:
    PortRun(const Assignment& assignment, const PortNames& port);

    /// Starts the first try. Results arrive as signals, possibly before this returns.
    void start();
    /// Allows no further try; a run that is pausing finishes at once.
    void stop_retrying();
    /// Kills the upload and allows no further try.
    void stop();

    const RunState& state() const { return m_state; }

Q_SIGNALS:
    void changed();
    /// A try has failed, and another one follows.
    void failed_try(const gang::Judgement& judgement);
    void finished(const gang::RunRecord& record);
    /// No serial number is available for a try; finished() or not_started() follows.
    void number_missing(const QString& reason);
    /// The run has ended before its first try; no signal follows.
    void not_started(const QString& reason);

private:
    enum class Step { Upload, Certification };

    void begin_try();
    bool take_number();
    void finish_without_number(const QString& reason);
    void begin_upload();
    void begin_certification();
    void launch(Step step, const QStringList& words);
    void on_process_ended(const ToolResult& result);
    void judge_upload(Judgement judgement);
    void judge_certification(Judgement judgement);
    void end_try(const Judgement& judgement);
    void pause(const Judgement& judgement);
    void finish(const Judgement& judgement);
    void show_progress();
    bool may_try_again(Verdict verdict) const;
    QString readable(QString message) const;

    const Assignment& m_assignment;
    ToolCommand m_command;
    RunState m_state;
    RunRecord m_record;
    RunFolder m_run_folder;
    std::unique_ptr<ToolProcess> m_process;
    QTimer m_pause;
    ReadFileCheck m_read;
    QHash<QString, QString> m_copies;
    Step m_step = Step::Upload;
    QStringList m_words;
    Settings m_settings; ///< of the current process
    Judgement m_judgement;
    bool m_number_may_be_in_device = false; ///< true if it may have reached a device
    bool m_last_try = false;
};

} // namespace gang

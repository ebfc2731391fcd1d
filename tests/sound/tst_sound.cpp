#include <support/Languages.h>
#include <support/Rows.h>

#include <cmath>

namespace {

constexpr int RATE = 16000;                    // samples a second, of the files, the sound server and the recording
constexpr int WINDOW = RATE / 20;              // samples that are judged at once; whole waves of every tone
constexpr double AMPLITUDE = 0.12;             // of a file, so that several together aren't clipped
constexpr double STEP = 2 * M_PI * 200 / RATE; // radians a sample from one tone to the next; the first is the third
const QString TONES = QStringLiteral("ABCDE");
constexpr void (CSoundManager::*PLAY[])(QString, bool) = {&CSoundManager::PlayEffect, &CSoundManager::PlayWarning,
                                                          &CSoundManager::PlayWinning, &CSoundManager::PlaySpeech};

QByteArray MakeWave(QChar tone, int count)
{
    QByteArray file;
    QDataStream stream(&file, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << 0x46464952 << 36 + 2 * count << 0x45564157 << 0x20746d66; // "RIFF", "WAVE", "fmt "; "data"
    stream << 16 << qint16(1) << qint16(1) << RATE << RATE * 2 << qint16(2) << qint16(16) << 0x61746164 << 2 * count;
    for (int i = 0; i < count; ++i)
        stream << qint16(32767 * AMPLITUDE * std::sin(STEP * (tone.unicode() - 62) * i));
    return file;
}

// How loud the tone is, in percent of a file, by the Goertzel algorithm.
int GetLevel(const qint16 *window, QChar tone)
{
    const double factor = 2 * std::cos(STEP * (tone.unicode() - 62));
    double last = 0, before = 0;
    for (int i = 0; i < WINDOW; ++i)
        before = std::exchange(last, window[i] / 32767. + factor * last - before);
    return qRound(std::sqrt(last * last + before * before - factor * last * before) * 200 / WINDOW / AMPLITUDE);
}

QString GetTones(const qint16 *window)
{
    QString tones;
    std::copy_if(TONES.begin(), TONES.end(), std::back_inserter(tones),
                 [&](QChar tone) { return GetLevel(window, tone) > 4; });
    return tones;
}

} // namespace

// All is judged by what comes out of a sound server of the test's own, which has no loudspeaker.
class tst_sound : public QObject
{
    Q_OBJECT

    const CInstallationTree m_tree;
    QProcess m_server, m_recorder;
    QByteArray m_baHeard = QByteArray(2 * WINDOW, 0);

    const qint16 *Listen() // answers the newest window
    {
        m_baHeard += m_recorder.readAll();
        return reinterpret_cast<const qint16 *>(m_baHeard.constData()) + m_baHeard.size() / 2 - WINDOW;
    }
    QString Story() // a tone of each window, a blank for silence
    {
        QString story;
        for (const qint16 *last = Listen(), *at = last - m_baHeard.size() / 2 + WINDOW; at <= last; at += WINDOW)
            story += (GetTones(at) + " "_s).at(0);
        return story;
    }
    bool IsNear(char tone, int level) { return qAbs(GetLevel(Listen(), QLatin1Char(tone)) - level) <= 3; }
    // A capital is a tone of 12 seconds, a small letter one of 8 windows.
    QString File(const QString &name) const { return name.size() == 1 ? m_tree.GetPath(name + ".wav"_s) : name; }

private Q_SLOTS:
    void initTestCase()
    {
        for (const QChar tone : TONES) {
            m_tree.WriteFile(tone + ".wav"_s, MakeWave(tone, 12 * RATE));
            m_tree.WriteFile(tone.toLower() + ".wav"_s, MakeWave(tone, 8 * WINDOW));
        }
        const QString folder = m_tree.MakeDir("server"_s), socket = folder + "/socket"_s;
        for (const char *name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH"})
            qputenv(name, QFile::encodeName(folder));
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(socket));
        const QString server = "exec pulseaudio -n --daemonize=no --exit-idle-time=10" // if the test crashes
                               " -L 'module-null-sink sink_name=out channels=1 rate=%1'"
                               " -L 'module-native-protocol-unix auth-anonymous=1 socket=%2'"_s;
        m_server.start("sh"_s, {"-c"_s, server.arg(RATE).arg(socket)});
        QVERIFY2(QTest::qWaitFor([&] { return QFile::exists(socket); }), m_server.readAllStandardError());
        m_recorder.start("parec"_s, "--raw --channels=1 --rate=%1 --latency-msec=20"_s.arg(RATE).split(" "_s));
        QTRY_VERIFY2(Listen() && m_baHeard.size() > 2 * WINDOW, m_recorder.readAllStandardError());
    }

    void cleanup()
    {
        DestroySingletons();
        QTRY_COMPARE(GetTones(Listen()), QString());
        m_baHeard.remove(0, m_baHeard.size() / 2 * 2 - 2 * WINDOW);
    }

    void cleanupTestCase()
    {
        m_server.terminate(); // the recorder ends then, too
        QVERIFY(m_recorder.waitForFinished() && m_server.waitForFinished());
    }

    void Gates_data()
    {
        AddRows(
            "none|ABCDE;soundsenabled|E;soundeffects|BCDE;alertsounds|ACDE;winningsounds|ABDE;dealerspeech|ABCE"_s);
    }

    void Gates()
    {
        QFETCH(QStringList, in); // what is off, what is heard
        CSettings *settings = CSettings::GetInstance();
        settings->SetWinningSounds(true); // the others are on
        settings->SetDealerSpeech(true);
        settings->setProperty(qPrintable(in[0]), false);
        for (const QChar tone : "ABCD"_s)
            (CSoundManager::GetInstance()->*PLAY[TONES.indexOf(tone)])(File(tone), false);
        CSoundManager::GetInstance()->PlaySample(70, File("E"_s));
        QTRY_COMPARE(GetTones(Listen()), in[1]);
        settings->SetSoundsEnabled(false); // what plays goes on
        QTest::qWait(100);
        QCOMPARE(GetTones(Listen()), in[1]);
    }

    void Volume()
    {
        CSettings *settings = CSettings::GetInstance();
        CSoundManager *manager = CSoundManager::GetInstance();
        manager->PlayEffect(File("A"_s), false);
        for (const int volume : {70, 100, 0, 60}) {
            settings->SetVolume(volume);
            QTRY_VERIFY(IsNear('A', volume));
        }
        settings->SetVolume(90, manager); // who sets it knows it
        manager->PlaySample(200, File("B"_s));
        QTRY_VERIFY(IsNear('B', 100) && IsNear('A', 60));
        manager->LoadSettings();
        CSoundPlayer *further = CSoundPlayer::GetInstance("FURTHER"_s);
        further->PlaySoundInstant(File("C"_s));
        QTRY_VERIFY(IsNear('A', 90) && IsNear('B', 90) && IsNear('C', 90));
        CSoundPlayer::DestroyInstance("NOBODY"_s);
        CSoundPlayer::DestroyInstance(further);
        QVERIFY(CSoundPlayer::IsExisting("EFFECT"_s));
        QVERIFY(!CSoundPlayer::IsExisting(further));
        QTRY_COMPARE(GetTones(Listen()), "AB"_s);
    }

    void Order_data()
    {
        // Channel; calls, + queued, ! until it is heard as usual, _ until nothing is; what was heard.
        AddRows("3 speech|a b+ c+|abc;3 speech|A! b+ c|Ac;3 speech|a! _ b+|ab;3 speech|a! :/b+ none+ c+|ac;"
                "3 speech|A! :/b|A;0 effect|A! b+|Ab;1 warning|a! b+|ab;2 winning|a! b+|ab"_s);
    }

    void Order()
    {
        QFETCH(QStringList, in);
        CSettings::GetInstance()->SetWinningSounds(true);
        const QStringList calls = in[1].split(" "_s);
        for (const QString &call : calls) {
            const QString name = QString(call).remove(QRegularExpression("[+!_]"_s));
            if (!name.isEmpty())
                (CSoundManager::GetInstance()->*PLAY[in[0].at(0).digitValue()])(File(name), call.endsWith("+"_s));
            if (call.contains(QRegularExpression("[!_]"_s)))
                QTRY_VERIFY(GetTones(Listen()) == name.toUpper() && (name.isEmpty() || IsNear('A', 70)));
        }
        in[2].replace(QRegularExpression("([A-Z])"_s), "(\\1 *)+"_s);
        in[2].replace(QRegularExpression("([a-z])"_s), "(\\1 *){7,9}"_s);
        QTRY_VERIFY2(Story().contains(QRegularExpression("^ *%1 {3}$"_s.arg(in[2].toUpper()))), qPrintable(Story()));
    }
};

QTEST_MAIN(tst_sound)
#include "tst_sound.moc"

#include <support/Languages.h>

#include <cmath>

namespace {

constexpr int RATE = 16000;        // samples a second, of the files, the sound server and the recording
constexpr int WINDOW = RATE / 20;  // samples that are judged at once; whole waves of every tone
constexpr double AMPLITUDE = 0.12; // of a file, so that several together aren't clipped
const QString TONES = QStringLiteral("ABCDEFG");

const QMap<QString, void (CSoundManager::*)(QString, bool)> PLAY{{"1 effect"_s, &CSoundManager::PlayEffect},
                                                                 {"2 warning"_s, &CSoundManager::PlayWarning},
                                                                 {"3 winning"_s, &CSoundManager::PlayWinning},
                                                                 {"4 speech"_s, &CSoundManager::PlaySpeech}};

constexpr double GetRadians(int tone)
{
    return 2 * M_PI * (500 + 200 * (tone - 'A')) / RATE;
}

QByteArray MakeWave(QChar tone, double seconds)
{
    const int count = int(seconds * RATE);
    QByteArray file;
    QDataStream stream(&file, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << 0x46464952 << 36 + 2 * count << 0x45564157 << 0x20746d66; // "RIFF", "WAVE", "fmt "
    stream << 16 << qint16(1) << qint16(1) << RATE << RATE * 2 << qint16(2) << qint16(16);
    stream << 0x61746164 << 2 * count; // "data"
    for (int i = 0; i < count; ++i)
        stream << qint16(32767 * AMPLITUDE * std::sin(GetRadians(tone.unicode()) * i));
    return file;
}

// How loud the tone is, in percent of a file, by the Goertzel algorithm.
int GetLevel(const qint16 *window, QChar tone)
{
    const double factor = 2 * std::cos(GetRadians(tone.unicode()));
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

    const CInstallationTree m_installation;
    QProcess m_server, m_recorder;
    QVector<qint16> m_vHeard = QVector<qint16>(WINDOW);

    const qint16 *Listen() // answers the newest window
    {
        const QByteArray bytes = m_recorder.read(m_recorder.bytesAvailable() / 2 * 2);
        m_vHeard.resize(m_vHeard.size() + bytes.size() / 2);
        std::memcpy(m_vHeard.end() - bytes.size() / 2, bytes.constData(), std::size_t(bytes.size()));
        return m_vHeard.constEnd() - WINDOW;
    }
    QString Story() // a tone of each window, a blank for silence
    {
        QString story;
        for (const qint16 *end = Listen(), *window = m_vHeard.constBegin(); window <= end; window += WINDOW)
            story += (GetTones(window) + QLatin1Char(' ')).at(0);
        return story;
    }
    bool IsNear(char tone, int level) { return qAbs(GetLevel(Listen(), QLatin1Char(tone)) - level) <= 3; }
    QString File(const QString &name) const // a capital is a tone of 20 seconds, a small letter one of 8 windows
    {
        return name.size() == 1 ? m_installation.GetPath(name + ".wav"_s) : name;
    }
    void PlayAll(QString gated, const QString &sample) const
    {
        for (const auto play : PLAY)
            (CSoundManager::GetInstance()->*play)(File(std::exchange(gated, gated.mid(1)).left(1)), false);
        CSoundManager::GetInstance()->PlaySample(70, File(sample));
    }

private Q_SLOTS:
    void initTestCase()
    {
        for (const QChar tone : TONES) {
            m_installation.WriteFile(tone + ".wav"_s, MakeWave(tone, 20));
            m_installation.WriteFile(tone.toLower() + ".wav"_s, MakeWave(tone, 0.4));
        }
        const QString folder = m_installation.MakeDir("server"_s), socket = folder + "/socket"_s;
        for (const char *name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH"})
            qputenv(name, QFile::encodeName(folder));
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(socket));
        // Should the test crash, it ends by itself.
        const QString server = "exec pulseaudio -n --daemonize=no --use-pid-file=no --exit-idle-time=10"
                               " -L 'module-null-sink sink_name=out channels=1 rate=%1'"
                               " -L 'module-native-protocol-unix auth-anonymous=1 socket=%2'"_s;
        m_server.start("sh"_s, {"-c"_s, server.arg(RATE).arg(socket)});
        QVERIFY2(QTest::qWaitFor([&] { return QFile::exists(socket); }), m_server.readAllStandardError());
        const QString recorder = "exec parec -d out.monitor --raw --channels=1 --rate=%1 --latency-msec=20"_s;
        m_recorder.start("sh"_s, {"-c"_s, recorder.arg(RATE)});
        QTRY_VERIFY2(Listen() > m_vHeard.constBegin(), m_recorder.readAllStandardError());
    }

    void cleanup()
    {
        DestroySingletons();
        QTRY_COMPARE(GetTones(Listen()), QString());
        m_vHeard.resize(WINDOW);
    }

    void cleanupTestCase()
    {
        m_recorder.terminate();
        m_server.terminate();
        QVERIFY(m_recorder.waitForFinished() && m_server.waitForFinished());
    }

    void Gates()
    {
        const QStringList switches =
            "soundsenabled soundeffects alertsounds winningsounds dealerspeech"_s.split(" "_s);
        for (QStringList in : Rows("none|ABCDE;soundsenabled|E;soundeffects|BCDE;alertsounds|ACDE;"
                                   "winningsounds|ABDE;dealerspeech|ABCE"_s)) {
            CSettings *settings = CSettings::GetInstance();
            for (const QString &name : switches)
                QVERIFY(settings->setProperty(qPrintable(name), name != in[0]));
            PlayAll("ABCD"_s, "E"_s);
            QTRY_COMPARE(GetTones(Listen()), in[1]);
            settings->SetSoundsEnabled(false); // what plays goes on
            PlayAll("GGGG"_s, "F"_s);
            QTRY_COMPARE(GetTones(Listen()), in[1].replace("E"_s, "F"_s));
            QTest::qWait(100);
            QCOMPARE(GetTones(Listen()), in[1]);
            cleanup();
        }
    }

    void Volume()
    {
        CSettings *settings = CSettings::GetInstance();
        CSoundManager *manager = CSoundManager::GetInstance();
        manager->PlayEffect(File("A"_s), false);
        for (const int volume : {70, 100, 30, 0, 60}) {
            settings->SetVolume(volume);
            QTRY_VERIFY(IsNear('A', volume));
        }
        settings->SetVolume(90, manager); // who sets it knows it
        manager->PlaySample(200, File("B"_s));
        QTRY_VERIFY(IsNear('B', 100) && IsNear('A', 60));
        manager->LoadSettings();
        CSoundPlayer *further = CSoundPlayer::GetInstance("FURTHER"_s);
        further->PlaySoundInstant(File("C"_s));
        for (const int volume : {90, 50}) {
            settings->SetVolume(volume);
            QTRY_VERIFY(IsNear('A', volume) && IsNear('B', volume) && IsNear('C', volume));
        }
        CSoundPlayer::DestroyInstance("NOBODY"_s);
        QVERIFY(CSoundPlayer::IsExisting("EFFECT"_s) && CSoundPlayer::IsExisting(further));
        CSoundPlayer::DestroyInstance(further);
        QVERIFY(!CSoundPlayer::IsExisting("FURTHER"_s) && !CSoundPlayer::IsExisting(further));
        QTRY_COMPARE(GetTones(Listen()), "AB"_s);
    }

    void Order_data()
    {
        // The channel; its calls, + queued, ! until it is heard as loud as usual, _ until all is silent, ~ a moment;
        // and what is heard.
        QTest::addColumn<QStringList>("in");
        for (const QStringList &in :
             Rows("4 speech|a b+ c+|A{7,9} ?B{7,9} ?C{7,9};4 speech|A! b+ c|A+ ?C{7,9};"
                  "4 speech|a! _ b+|A{7,9} +B{7,9};4 speech|a! :/b+ none+ c+|A{7,9} ?C{7,9};4 speech|A! :/b|A+;"
                  "2 warning|A! none|A+;1 effect|A! b+|A+ ?B{7,9};2 warning|a! b+|A{7,9} ?B{7,9};"
                  "3 winning|a! b+|A{7,9} ?B{7,9}"_s))
            QTest::newRow(qPrintable(in[0] + " "_s + in[1])) << in;
        QTest::newRow("200 times") << QStringList{"1 effect"_s, "A~ "_s.repeated(200) + "A! b"_s, "[A ]*A ?B{7,9}"_s};
    }

    void Order()
    {
        QFETCH(QStringList, in);
        CSettings::GetInstance()->SetWinningSounds(true);
        for (const QString &call : in[1].split(" "_s)) {
            const QString name = QString(call).remove(QRegularExpression("[+!_~]"_s));
            if (!name.isEmpty())
                (CSoundManager::GetInstance()->*PLAY[in[0]])(File(name), call.endsWith("+"_s));
            if (call.contains(QRegularExpression("[!_]"_s)))
                QTRY_VERIFY(GetTones(Listen()) == name.toUpper() && (name.isEmpty() || IsNear('A', 70)));
            else if (call.endsWith("~"_s))
                QTest::qWait(5);
        }
        QTRY_VERIFY2(Story().contains(QRegularExpression("^ *%1 {3,}$"_s.arg(in[2]))), qPrintable(Story()));
    }
};

QTEST_MAIN(tst_sound)
#include "tst_sound.moc"

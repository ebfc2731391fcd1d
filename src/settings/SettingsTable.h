#pragma once

// The user settings, one row each, in the order of the members, properties and signals of CSettingsBase:
// ROW(type, Name, key, area, scope, default)
//
// A PLAIN row holds one value. A KEYED row holds a hash of values by lower-case sub-keys, which its callers choose.
// Both have the same columns. The members, getters, setters, signals, properties, defaults and the look-up by key are
// made from this table. Keys are lower case, without brackets, and unique across areas. Users' files contain keys and
// areas, so a released row is never renamed. A setting of scope User is stored for each user, one of scope Global for
// the installation. A default may refer to config, the operator's configuration.
// clang-format off
#define SETTINGS_TABLE(PLAIN, KEYED) \
    PLAIN(QByteArray, AutoTopUpSettings, autotopupsettings, autotopup, User, QByteArray()) \
    PLAIN(int, CartoonAvatar, cartoonavatar, avatarconfig, User, 0) \
    PLAIN(int, CustomCurrent, customcurrent, avatarconfig, User, 0) \
    PLAIN(int, CustomAproving, customaproving, avatarconfig, User, 0) \
    PLAIN(QString, CustomUploaded, customuploaded, avatarconfig, User, QString()) \
    PLAIN(QByteArray, ChatOptions, chatoptions, chatoptions, User, QByteArray()) \
    PLAIN(bool, ShowFps, showfps, client, Global, false) \
    PLAIN(bool, ShowTextRect, showtextrect, client, Global, false) \
    PLAIN(int, ReloadInterval, reloadinterval, client, Global, 5000) \
    PLAIN(int, ClientID, clientid, client, Global, 0) \
    PLAIN(QString, FontFamily, fontfamily, client, Global, QString()) \
    PLAIN(bool, EnableAllThemes, enableallthemes, client, Global, false) \
    PLAIN(bool, AddThemeIDToName, addthemeidtoname, client, Global, false) \
    PLAIN(bool, AutoPlayEnabled, autoplayenabled, client, Global, false) \
    PLAIN(int, AutoPlayTimeMin, autoplaytimemin, client, Global, 1) \
    PLAIN(int, AutoPlayTimeMax, autoplaytimemax, client, Global, 3) \
    PLAIN(bool, NonModalNetwDlg, nonmodalnetwdlg, client, Global, false) \
    PLAIN(QString, DesignerTab, designertab, client, Global, QString()) \
    PLAIN(bool, UpdatesEnabled, updatesenabled, client, Global, true) \
    PLAIN(bool, ConfigUpdatesEnabled, configupdatesenabled, client, Global, true) \
    KEYED(TWinPos, WinPos, winpos, client, Global, TWinPos()) \
    PLAIN(bool, ThemeApplyInstant, themeapplyinstant, client, Global, true) \
    PLAIN(QString, QMLTestFile, qmltestfile, client, Global, QString()) \
    PLAIN(QByteArray, RSyncKey, rsynckey, client, Global, QByteArray()) \
    PLAIN(int, TimezoneIndex30, timezoneindex30, config, User, 53) \
    PLAIN(bool, ShowAds, showads, config, User, config->GetOptionAdsPopups()) \
    PLAIN(bool, AnimationsOff, animationsoff, config, User, config->GetOptionAnimationsOff()) \
    PLAIN(bool, HourlyReport, hourlyreport, config, User, false) \
    PLAIN(int, AvatarDisplayMode, avatardisplaymode, config, User, 0) \
    PLAIN(QString, PokerLobbyType, pokerlobbytype, config, User, QString()) \
    PLAIN(bool, StoreRGFilter, storergfilter, filter, User, false) \
    PLAIN(bool, StoreBeamFilter, storebeamfilter, filter, User, false) \
    PLAIN(bool, StoreTRNFilter, storetrnfilter, filter, User, false) \
    PLAIN(bool, StoreSNGFilter, storesngfilter, filter, User, false) \
    PLAIN(QByteArray, RinggameFilter, ringgamefilter, filter, User, QByteArray()) \
    PLAIN(QByteArray, BeamFilter, beamfilter, filter, User, QByteArray()) \
    PLAIN(QByteArray, TournamentFilter, tournamentfilter, filter, User, QByteArray()) \
    PLAIN(QByteArray, SngFilter, sngfilter, filter, User, QByteArray()) \
    PLAIN(QByteArray, Filter2Ringgame, filter2ringgame, filter, User, QByteArray()) \
    PLAIN(QByteArray, Filter2Beam, filter2beam, filter, User, QByteArray()) \
    PLAIN(QByteArray, Filter2Tournament, filter2tournament, filter, User, QByteArray()) \
    PLAIN(QByteArray, Filter2Sng, filter2sng, filter, User, QByteArray()) \
    KEYED(THeaderSizes, HeaderSizes, headersizes, headers, User, THeaderSizes()) \
    KEYED(THeaderSortingColumn, HeaderSortingColumn, headersortingcolumn, headers, User, THeaderSortingColumn()) \
    KEYED(THeaderSortingOrder, HeaderSortingOrder, headersortingorder, headers, User, THeaderSortingOrder()) \
    PLAIN(int, SelectedLanguage, selectedlanguage, language, User, -1) \
    PLAIN(int, Time_Session, time_session, limits, User, 0) \
    PLAIN(int, Time_Day, time_day, limits, User, 0) \
    PLAIN(int, Time_Week, time_week, limits, User, 0) \
    PLAIN(int, Loss_Day, loss_day, limits, User, 0) \
    PLAIN(int, Loss_Week, loss_week, limits, User, 0) \
    PLAIN(int, Wager_Day, wager_day, limits, User, 0) \
    PLAIN(int, Wager_Week, wager_week, limits, User, 0) \
    PLAIN(int, SelectedGametype, selectedgametype, lobby, User, -1) \
    PLAIN(int, SelectedFilter, selectedfilter, lobby, User, -1) \
    PLAIN(int, QmlLobbyListType, qmllobbylisttype, lobby, User, config->GetQmlLobbyListType()) \
    PLAIN(bool, RememberPassword, rememberpassword, login, Global, false) \
    PLAIN(bool, AutoLogoff, autologoff, login, Global, false) \
    PLAIN(QString, LastUserName, lastusername, login, Global, QString()) \
    PLAIN(QString, LastUserPwd, lastuserpwd, login, Global, QString()) \
    PLAIN(QString, PlayerTags, playertags, playertagging, User, QString()) \
    PLAIN(int, PreferredSeatIndex2, preferredseatindex2, pokertable, User, config->GetPreferredSeat2()) \
    PLAIN(int, PreferredSeatIndex3, preferredseatindex3, pokertable, User, config->GetPreferredSeat3()) \
    PLAIN(int, PreferredSeatIndex4, preferredseatindex4, pokertable, User, config->GetPreferredSeat4()) \
    PLAIN(int, PreferredSeatIndex5, preferredseatindex5, pokertable, User, config->GetPreferredSeat5()) \
    PLAIN(int, PreferredSeatIndex6, preferredseatindex6, pokertable, User, config->GetPreferredSeat6()) \
    PLAIN(int, PreferredSeatIndex7, preferredseatindex7, pokertable, User, config->GetPreferredSeat7()) \
    PLAIN(int, PreferredSeatIndex8, preferredseatindex8, pokertable, User, config->GetPreferredSeat8()) \
    PLAIN(int, PreferredSeatIndex9, preferredseatindex9, pokertable, User, config->GetPreferredSeat9()) \
    PLAIN(int, PreferredSeatIndex10, preferredseatindex10, pokertable, User, config->GetPreferredSeat10()) \
    PLAIN(QString, PersonalDirPath, personaldirpath, product, Global, QString()) \
    PLAIN(bool, SoundsEnabled, soundsenabled, sounds, User, true) \
    PLAIN(bool, SoundEffects, soundeffects, sounds, User, true) \
    PLAIN(bool, AlertSounds, alertsounds, sounds, User, true) \
    PLAIN(bool, WinningSounds, winningsounds, sounds, User, false) \
    PLAIN(int, Volume, volume, sounds, User, 70) \
    PLAIN(bool, DealerSpeech, dealerspeech, sounds, User, config->GetOptionDealerSound()) \
    PLAIN(bool, ShowFreeCheckWarning, showfreecheckwarning, table, User, true) \
    PLAIN(bool, DisableTablePopup, disabletablepopup, table, User, false) \
    PLAIN(bool, ShowBestHand, showbesthand, table, User, true) \
    PLAIN(bool, SaveHandHistory, savehandhistory, table, User, true) \
    PLAIN(int, SliderPreFlopButton1Type, sliderpreflopbutton1type, table, User, config->GetDefSliderPreFlopButton1Type()) \
    PLAIN(int, SliderPreFlopButton2Type, sliderpreflopbutton2type, table, User, config->GetDefSliderPreFlopButton2Type()) \
    PLAIN(int, SliderPreFlopButton3Type, sliderpreflopbutton3type, table, User, config->GetDefSliderPreFlopButton3Type()) \
    PLAIN(int, SliderPostFlopButton1Type, sliderpostflopbutton1type, table, User, config->GetDefSliderPostFlopButton1Type()) \
    PLAIN(int, SliderPostFlopButton2Type, sliderpostflopbutton2type, table, User, config->GetDefSliderPostFlopButton2Type()) \
    PLAIN(int, SliderPostFlopButton3Type, sliderpostflopbutton3type, table, User, config->GetDefSliderPostFlopButton3Type()) \
    PLAIN(int, SliderPreFlopButton1Values, sliderpreflopbutton1values, table, User, config->GetDefSliderPreFlopButton1Values()) \
    PLAIN(int, SliderPreFlopButton2Values, sliderpreflopbutton2values, table, User, config->GetDefSliderPreFlopButton2Values()) \
    PLAIN(int, SliderPreFlopButton3Values, sliderpreflopbutton3values, table, User, config->GetDefSliderPreFlopButton3Values()) \
    PLAIN(int, SliderPostFlopButton1Values, sliderpostflopbutton1values, table, User, config->GetDefSliderPostFlopButton1Values()) \
    PLAIN(int, SliderPostFlopButton2Values, sliderpostflopbutton2values, table, User, config->GetDefSliderPostFlopButton2Values()) \
    PLAIN(int, SliderPostFlopButton3Values, sliderpostflopbutton3values, table, User, config->GetDefSliderPostFlopButton3Values()) \
    PLAIN(int, SliderStepType, slidersteptype, table, User, config->GetDefSliderStepType()) \
    PLAIN(bool, WaitForBigBlindDef, waitforbigblinddef, table, User, config->GetOptionWaitForBBDef()) \
    PLAIN(bool, StoreTablePos, storetablepos, table, User, false) \
    KEYED(TSelBackground, SelBackground, selbackground, tableconfig, User, TSelBackground()) \
    KEYED(TSelSubTheme, SelSubTheme, selsubtheme, tableconfig, User, TSelSubTheme()) \
    PLAIN(int, ThemeGeneral, themegeneral, themesettings, User, 0) \
    PLAIN(int, ThemePokerTable, themepokertable, themesettings, User, 0) \
    PLAIN(int, ThemeEmoticons, themeemoticons, themesettings, User, 0) \
    PLAIN(int, ThemeCartoonAvatars, themecartoonavatars, themesettings, User, 0) \
    PLAIN(int, ThemeDealer, themedealer, themesettings, User, 0) \
    PLAIN(int, ThemeCardFaces, themecardfaces, themesettings, User, 0) \
    PLAIN(int, ThemeCardBack, themecardback, themesettings, User, 0) \
    PLAIN(int, ThemeChips, themechips, themesettings, User, 0) \
    /* New rows go above this line. */
// clang-format on

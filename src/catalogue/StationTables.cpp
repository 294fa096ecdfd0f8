// The four station tables as the panels carry them. Blanks, mismatched
// display names, the doubled port, the "hhttp" scheme and the explicit port
// 80 on "mms" are the rows' own values and are kept as they stand. Hosts are
// not part of a row: they come from the hosts table.

#include "catalogue/StationTables.h"

namespace {

// clang-format off
const StationRow kTafm[] = {
    // button caption                 display name                        lead scheme  port   path                                          left  top   width
    {"s1",  "Hi Fm",                 "Hi Fm",                             "", "http", "",     "/hi2.asx",                                   0,    0,    1335},
    {"s2",  "Express Tamil",         "Express Tamil Fm",                  "", "http", "",     "/radio",                                     0,    600,  1575},
    {"s3",  "Tarnel",                "Tarnelith Fm ",                     "", "http", "8000", "/",                                          0,    1200, 1455},
    {"s4",  "IsaiTamilan",           "Isai Tamilan Fm",                   "", "http", "",     "/fm/Isaitamil Fm.asx",                       0,    1800, 1695},
    {"s5",  "Natch -atra",           "Natchatra",                         "", "mms",  "",     "/64",                                        0,    2400, 1095},
    {"s6",  "Cheers",                "Cheers Fm From Chennai",            "", "mms",  "",     "/cheersfm",                                  0,    3000, 1335},
    {"s7",  "Aasai",                 "AAsai Fm",                          "", "mms",  "",     "/baloo124764",                               0,    3600, 1575},
    {"s8",  "Thuthi",                "Thuthi",                            "", "http", "",     "/thuthifm/listen.wmx",                       0,    4200, 1335},
    {"s9",  "Echo",                  "Tamil Echo Fm",                     "", "http", "",     "/listen.asx",                                0,    4800, 1575},
    {"s10", "Tamil Osai (LNDN)",     "Express Tamil Fm",                  "", "http", "",     "/asx.esi?tamil/tx/nb/tam1545.wma",           0,    5400, 1095},
    {"s11", "Minnal",                "Minnal Tamil Fm",                   "", "http", "",     "/24752/live/reflector:52729.asx",            0,    6000, 1335},
    {"s12", "Mudhal",                "Mudhal Fm",                         "", "http", "8058", "",                                           0,    6600, 1575},
    {"S13", "Shyam",                 "Express Tamil Fm",                  "", "mms",  "",     "/shyamradio",                                0,    7200, 1815},
    {"S14", "Tamil Aruvi",           "Tamil Aruvi Fm",                    "", "http", "",     "/tafm.asx",                                  1080, 0,    1335},
    {"s15", "Shakthi",               "Tarnelith Fm",                      "", "http", "",     "/shakthifm",                                 1320, 600,  1335},
    {"S16", "Tsr",                   "Tarnelith Fm ",                     "", "http", "9152", "/",                                          1200, 1200, 1455},
    {"S17", "Vettri",                "Vettri Fm",                         "", "http", "7564", "",                                           1440, 1800, 1455},
    {"s18", "DataBase",              "New Songs ",                        "", "http", "8002", "",                                           840,  2400, 1695},
    {"S19", "Database2",             "Tamil Old Songs",                   "", "http", "8006", "",                                           1080, 3000, 1575},
    {"S20", "DataBase3",             "Middle Songs",                      "", "http", "8008", "",                                           1320, 3600, 1575},
    {"S21", "GTR",                   "GTR (Srilanka)",                    "", "rtsp", "",     "/gtr24",                                     1080, 4200, 1335},
    {"s22", "Flash",                 "Tarnelith Fm",                      "", "http", "",     "/hi2world.asx",                              1320, 4800, 1335},
    {"s23", "Nj",                    "Tarnelith Fm",                      "", "http", "",     "/listen88.asx",                              840,  5400, 1695},
    {"s24", "IBM",                   "IBM",                               "", "http", "",     "/asx/listen.asx?sid=256855",                 1080, 6000, 1695},
    {"s25", "Tamil Star",            "Tamil Starz Fm ",                   "", "mms",  "",     "/tamilstar",                                 1320, 6600, 1695},
    {"s26", "CTBC",                  "CTBC",                              "", "http", "9004", "/",                                          1560, 7200, 1695},
    {"s27", "Jey",                   "Jey Fm ",                           "", "http", "8000", "/",                                          2160, 0,    1335},
    {"s28", "Sooriyan",              "Sooriyan Canada ",                  "", "http", "10123", "/",                                         2400, 600,  1455},
    {"s29", "Gbtc",                  "GBTC (London 8:00am to 6:00Pm)",    "", "http", "",     "/asx/listen.asx?sid=255432",                 2400, 1200, 1455},
    {"s30", "Katrey",                "Isai Tamilan Fm",                   "", "http", "8000", "",                                           2640, 1800, 1455},
    {"s31", "K.D.Morvan",            "K.D.Morvan Collections",            "", "http", "9342", "",                                           2040, 2400, 1815},
    {"s32", "Nila",                  "Nila Fm",                           "", "http", "8000", "/",                                          2400, 3000, 1335},
    {"S33", "TRT",                   "TRT Tamil Fm",                      "", "http", "8024", "/",                                          2640, 3600, 1335},
    {"s34", "Hello 106.4",           "Hello Fm",                          "", "http", "",     "/bdcast_ind_hello-fm",                       2160, 4200, 1575},
    {"s35", "Radio Spice",           "Radio Spice",                       "", "http", "4334", "/",                                          2400, 4800, 1575},
    {"s36", "Vaanmalar",             "Vaanmalar",                         "", "http", "8004", "",                                           2280, 5400, 1935},
    {"s37", "Sivan Kovil",           "Sivankovil BakthiPADAL",            "", "http", "8000", "/",                                          2520, 6000, 1935},
    {"s38", "Tamil Connect",         "Tamil Connect",                     "", "http", "",     "/fm.asx",                                    2760, 6600, 1935},
    {"s39", "Tamil national",        "Tamil National",                    "", "http", "",     "/cityfm_tamil",                              3000, 7200, 1935},
    {"S40", "Golden Tamil",          "Golden Tamil",                      "", "http", "",     "/wmp.asx",                                   3240, 0,    1335},
    {"S41", "Geeth -avani",          "Geethavani",                        "", "http", "",     "/live1.asf",                                 3600, 600,  1215},
    {"s42", "Releive",               "Releive Radio",                     "", "http", "",     "/reliveradio/reliveradio.mp3",               3600, 1200, 1335},
    {"s43", "Rythmz",                "Rythmz",                            "", "http", "",     "/jeifm/index.asx",                           3840, 1800, 1335},
    {"s44", "London",                "London Radio",                      "", "http", "",     "/londontamilradio",                          3240, 2400, 1455},
    {"s45", "Jei",                   "Jei",                               "", "http", "",     "/radio/index.asx",                           3480, 3000, 1335},
    {"s46", "Vettri",                "Vettri",                            "", "http", "7564", "",                                           3720, 3600, 1335},
    {"s47", "Celyon Tamil",          "Celyon tamil",                      "", "http", "",     "/live",                                      3480, 4200, 1335},
    {"s48", "Minnal",                "Minnal",                            "", "http", "",     "/minnalfm",                                  3720, 4800, 1335},
    {"s49", "Amp (SING)",            "AMP FROM SINGAPORE",                "", "mms",  "",     "/AMP_THRR",                                  3960, 5400, 1335},
    {"s50", "STR",                   "STR",                               "", "mms",  "",     "/strfm",                                     4200, 6000, 1575},
    {"s51", "Global",                "Global",                            "", "http", "",     "/asx/listen.asx?sid=255432",                 4440, 6600, 1335},
    {"s52", "IBC",                   "IBC",                               "", "http", "",     "/live.asx",                                  4680, 7200, 1095},
    {"s53", "Tamil News",            "Tamil News play Once",              "", "http", "",     "/asx.esi?tamil/tx/nb/tamil_news.wma",        4320, 0,    1455},
    {"s54", "CTBC",                  "CTBC",                              "", "http", "",     "/tunein.php/morlenatavik/playlist.asx",      4560, 600,  1215},
    {"s55", "CTR",                   "CTR",                               "", "http", "",     "/Live/LiveHigh.asx",                         4560, 1200, 1215},
    {"s56", "CMR",                   "CMR",                               "", "http", "",     "/Live/LiveHigh.asx",                         4920, 1800, 855},
    {"s57", "Tamil Echo",            "Tamil Echo",                        "", "http", "",     "/listen.asx",                                4440, 2400, 1335},
    {"s58", "Sedhar Kural",          "Cheers Fm From Chennai",            "", "http", "26390", "",                                          4560, 3000, 1215},
    {"s59", "Tsr",                   "TSR",                               "", "http", "",     "/tsrlive.asx",                               4800, 3600, 975},
    {"s60", "ITR",                   "ITR",                               "", "http", "",     "/images/streamurl.ram",                      4560, 4200, 1215},
    {"s61", "Lotus (ENG)",           "Lotus Eng Fm",                      "", "http", "",     "/lotusfm-live",                              4800, 4800, 975},
    {"s62", "Rain Bow",              "AAsai Fm",                          "", "http", "9464", "",                                           4800, 5400, 975},
};

// S14 starts with a blank before its scheme, s5 and S16 end with one, and s8
// names its port twice. All kept as they stand.
const StationRow kAfm[] = {
    {"s1",  "Radio Kushi",           "Radio Kushi",                       "",  "http", "",      "/liveind.asx",                              0,    0,    1575},
    {"s2",  "Akashavani",            "AAkashavani",                       "",  "http", "",      "/vb?play=56262117",                         0,    600,  1815},
    {"s3",  "Radio City",            "Radio City",                        "",  "http", "",      "/rcity?play=743580394",                     0,    1200, 2055},
    {"s4",  "Suriyan",               "Suriyan",                           "",  "http", "",      "/sfm?play=992758580",                       0,    1800, 2295},
    {"s5",  "Radio Mirchi",          "Radio Mirchi",                      "",  "http", "",      "/rmirchi?play=968771965 ",                  2040, 1800, 1935},
    {"s6",  "Tori",                  "Tori",                              "",  "http", "8232",  "",                                          0,    2400, 2535},
    {"s7",  "Telugu",                "AAsai Fm",                          "",  "http", "8032",  "",                                          0,    3000, 2775},
    {"s8",  "Telugu ",               "Thuthi",                            "",  "http", "82:82", "/ramgen/yr6rjur/t/f/fools/tannulu_thinte.rm", 2400, 3000, 1575},
    {"s9",  "Sai",                   "Sai Fm",                            "",  "http", "8008",  "",                                          2160, 2400, 1815},
    {"S14", "Telugu",                "Telugu 3",                          " ", "http", "8132",  "",                                          1320, 0,    2655},
    {"s15", "Radio NRi",             "Radio NRI",                         "",  "http", "8024",  "",                                          1440, 600,  2535},
    {"S16", "Telugu One",            "Telugu One Universal",              "",  "http", "8232",  " ",                                         1800, 1200, 2175},
};

// s27 lies under s9, out of the mouse's reach.
const StationRow kMalfm[] = {
    {"s1",  "Hit Fm",                "Hit Fm",                            "", "mms",  "",     "/arabian_radio-hitfm-64",                    0,    0,    2175},
    {"s2",  "PineRadios",            "Pine Radios",                       "", "http", "",     "/wpl.wpl",                                   0,    600,  2175},
    {"s3",  "Radio kerala",          "Radio kerala ",                     "", "http", "8000", "/",                                          0,    1200, 2295},
    {"s4",  "Space Radio",           "Space Radio",                       "", "http", "8542", "",                                           0,    1800, 2295},
    {"s5",  "Dum Dum",               "Dum Dum",                           "", "mms",  "",     "/radiodumdum",                               0,    2400, 2295},
    {"s6",  "Malayali radio",        "Malayali Radio",                    "", "rtsp", "",     "/malayaliradioDC79039",                      0,    3000, 2415},
    {"s7",  "Miracele",              "Miracle",                           "", "mms",  "",     "/miraclesradio1",                            0,    3600, 2175},
    {"s8",  "wordtoworldradio",      "wordtoworldradio",                  "", "mms",  "",     "/wordtoworldradio",                          0,    4200, 3975},
    {"s9",  "radiomalankara",        "radiomalankara",                    "", "mms",  "",     "/radiomalankara",                            1920, 0,    2055},
    {"s10", "Masti",                 "Masti tunes",                       "", "http", "",     "/listen",                                    1920, 600,  2055},
    {"s11", "radioteentaal",         "radioteentaal",                     "", "http", "",     "/masala128.wax",                             2040, 1200, 1935},
    {"s12", "SWARGA sUDHA",          "SWARGA sUDHA",                      "", "http", "8022", "",                                           2040, 1800, 1935},
    {"S13", "Bren Vostak",           "Bren Vosstak",                      "", "http", "",     "/rdja.asx",                                  2040, 2400, 1935},
    {"S14", "Malayalam",             "Malayalam",                         "", "mms",  "80",   "/malayalam",                                 2160, 3000, 1815},
    {"s15", "Shakthi",               "Tarnelith Fm",                      "", "http", "",     "/shakthifm",                                 1920, 3600, 2055},
    {"s27", "Jey",                   "Jey Fm ",                           "", "http", "8000", "/",                                          2160, 0,    1335},
};

// The Malayalam table but for s1, s2, s9 and the misspelt scheme of s10.
const StationRow kKanna[] = {
    {"s1",  "Radio Grimit",          "Radio Grimit",                      "", "http", "8070", "",                                           0,    600,  2175},
    {"s2",  "Radio Spice",           "Radio Spice",                       "", "http", "",     "/stream/radio/kannada/radiospice.asx ",      0,    0,    2175},
    {"s3",  "Radio kerala",          "Radio kerala ",                     "", "http", "8000", "/",                                          0,    1200, 2295},
    {"s4",  "Space Radio",           "Space Radio",                       "", "http", "8542", "",                                           0,    1800, 2295},
    {"s5",  "Dum Dum",               "Dum Dum",                           "", "mms",  "",     "/radiodumdum",                               0,    2400, 2295},
    {"s6",  "Malayali radio",        "Malayali Radio",                    "", "rtsp", "",     "/malayaliradioDC79039",                      0,    3000, 2415},
    {"s7",  "Miracele",              "Miracle",                           "", "mms",  "",     "/miraclesradio1",                            0,    3600, 2175},
    {"s8",  "wordtoworldradio",      "wordtoworldradio",                  "", "mms",  "",     "/wordtoworldradio",                          0,    4200, 3975},
    {"s9",  "KZSU 90.4 FM",          "KZSU 90.4 FM",                      "", "http", "",     "/kzsu-1-24.mp3",                             1920, 0,    2055},
    {"s10", "Masti",                 "Masti tunes",                       "", "hhttp", "",    "/listen",                                    1920, 600,  2055},
    {"s11", "radioteentaal",         "radioteentaal",                     "", "http", "",     "/masala128.wax",                             2040, 1200, 1935},
    {"s12", "SWARGA sUDHA",          "SWARGA sUDHA",                      "", "http", "8022", "",                                           2040, 1800, 1935},
    {"S13", "Bren Vostak",           "Bren Vosstak",                      "", "http", "",     "/rdja.asx",                                  2040, 2400, 1935},
    {"S14", "Malayalam",             "Malayalam",                         "", "mms",  "80",   "/malayalam",                                 2160, 3000, 1815},
    {"s15", "Shakthi",               "Tarnelith Fm",                      "", "http", "",     "/shakthifm",                                 1920, 3600, 2055},
    {"s27", "Jey",                   "Jey Fm ",                           "", "http", "8000", "/",                                          2160, 0,    1335},
};
// clang-format on

} // namespace

std::span<const StationRow> stationRows(const QString &panel)
{
    if (panel == QLatin1String("Tafm"))
        return kTafm;
    if (panel == QLatin1String("Afm"))
        return kAfm;
    if (panel == QLatin1String("Malfm"))
        return kMalfm;
    if (panel == QLatin1String("kanna"))
        return kKanna;
    return {};
}

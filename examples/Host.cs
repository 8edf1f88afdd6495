// A host in C#: says what a recording is and converts it, with progress; Ctrl+C stops it.
//
//   Host.exe R0010RVC.REC                  writes R0010RVC.REC.xml
//
// Windows: csc /platform:x64 Host.cs       Linux: mcs Host.cs
using System;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;

static class Quorvex64
{
    const string Library = "Quorvex64";  // Quorvex64.dll or libQuorvex64.so

    // A path that the code page cannot say throws, instead of naming another file.
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Ansi,
               BestFitMapping = false, ThrowOnUnmappableChar = true)]
    public static extern void QuorvexConvert(string path, string outputPath, Progress progress);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Ansi,
               BestFitMapping = false, ThrowOnUnmappableChar = true)]
    public static extern void QuorvexGetRecordInfo(string path, StringBuilder text);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int QuorvexGetVersion();

    // Called by the library: no exception may leave it.
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate int Progress(float fraction);
}

static class Host
{
    static volatile bool cancelled;

    static int ShowProgress(float fraction)
    {
        Console.Error.Write("\r{0,3:F0} %", 100 * fraction);
        return cancelled || fraction > 2 ? -1 : 0; // records without end: see quorvex64.h
    }

    static int Main(string[] arguments)
    {
        if (arguments.Length != 1)
        {
            Console.Error.WriteLine("usage: Host RECORDING");
            return 2;
        }
        string recording = arguments[0], document = recording + ".xml";
        Console.CancelKeyPress += (sender, e) => { cancelled = true; e.Cancel = true; };

        var line = new StringBuilder(512);
        Quorvex64.QuorvexGetRecordInfo(recording, line);
        Console.WriteLine("Quorvex64 {0}: {1}", Quorvex64.QuorvexGetVersion(), line);

        // The call itself never fails: what counts is whether there is a document afterwards.
        File.Delete(document);
        Quorvex64.Progress progress = ShowProgress;
        Quorvex64.QuorvexConvert(recording, document, progress);
        GC.KeepAlive(progress);  // the library may call it until here
        if (!File.Exists(document))
        {
            Console.Error.WriteLine("{0}: no document", recording);
            return 1;
        }
        if (cancelled)
        {
            File.Delete(document);
            return 130;
        }
        Console.WriteLine("wrote {0}", document);
        return 0;
    }
}

package zoren.bench;

import android.graphics.Bitmap;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Locale;
import java.util.function.IntSupplier;
import zoren.util.BitmapGrayUtil;
import zoren.util.BlurUtil;

/** What a call costs before any pixel counts: the image natives on a bitmap of 2 x 2 pixels. */
public final class CallOverhead {
    private static final int CALLS = 20_000; // a round
    private static final int ROUNDS = 31;
    private static int sink; // keeps the results

    private CallOverhead() {}

    /** Writes nanoseconds a call, as JSON, to the file that the one argument names. */
    public static void main(String[] args) throws IOException {
        final Bitmap bitmap = Bitmap.createBitmap(2, 2, Bitmap.Config.ARGB_8888);
        final List<String> rows = new ArrayList<>();
        rows.add(row("a refused call: gray of null", () -> BitmapGrayUtil.getBitmapGray(null)));
        rows.add(row("blur of radius 0, colour 0", () -> {
            BlurUtil.getBlurEffect(bitmap, 0f, 0);
            return 0;
        }));
        rows.add(row("gray", () -> BitmapGrayUtil.getBitmapGray(bitmap)));
        rows.add(row("cast", () -> BitmapGrayUtil.getBitmapColorCast(bitmap, 60, 90)));
        final String json = "[\n  " + String.join(",\n  ", rows) + "\n]\n";
        Files.writeString(Path.of(args[0]), json);
    }

    private static String row(String name, IntSupplier call) {
        for (int i = 0; i < 10; i++) {
            nanosecondsPerCall(call); // until the loop is compiled
        }
        final double[] rounds = new double[ROUNDS];
        for (int i = 0; i < ROUNDS; i++) {
            rounds[i] = nanosecondsPerCall(call);
        }
        Arrays.sort(rounds);
        return String.format(
                Locale.ROOT,
                "{\"name\": \"%s\", \"median\": %.1f, \"lower\": %.1f, \"upper\": %.1f}",
                name, rounds[ROUNDS / 2], rounds[ROUNDS / 4], rounds[ROUNDS * 3 / 4]);
    }

    private static double nanosecondsPerCall(IntSupplier call) {
        final long start = System.nanoTime();
        for (int i = 0; i < CALLS; i++) {
            sink += call.getAsInt();
        }
        return (double) (System.nanoTime() - start) / CALLS;
    }
}

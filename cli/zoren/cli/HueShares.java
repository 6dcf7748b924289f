package zoren.cli;

import android.graphics.Bitmap;
import com.fasterxml.jackson.core.JsonGenerator;
import java.awt.Color;
import java.io.IOException;
import java.util.Arrays;
import java.util.Locale;
import zoren.util.BitmapGrayUtil;

/**
 * Why a picture has the cast it has, or none: how its coloured pixels lie on the circle of hues.
 * The library tells no more than its verdict, but of any picture; so it is asked for each colour
 * that occurs, as a picture of that colour alone, and what it says is counted.
 */
final class HueShares {
    private static final int SPANS = 24; // each from 15 k to 15 k + 29 degrees
    private static final int DEGREES = 15;
    private static final int NONE = -1;
    private static final double LEAST_COLOURED = 0.05;
    private static final double LEAST_LEADER = 0.4;
    private static final double LEAST_LEAD = 0.2;
    private static final int ORANGE = 0xFFFF9500; // hue 35, in bin 2
    private static final int BAR = 40; // the longest, in characters

    private final int[] bins = new int[SPANS]; // pixels by hue, 15 degrees each
    private final int pixels;
    private int coloured;
    private int leader;
    private int runnerUp = 1;

    HueShares(Bitmap bitmap) {
        final Bitmap probe = Bitmap.createBitmap(2, 2, Bitmap.Config.ARGB_8888);
        final byte[] known = new byte[1 << 24]; // by colour: its bin plus 2, 1 for "not coloured"
        final int[] row = new int[bitmap.getWidth()];
        pixels = row.length * bitmap.getHeight();
        for (int y = 0; y < bitmap.getHeight(); ++y) {
            bitmap.getPixels(row, 0, row.length, 0, y, row.length, 1);
            for (final int color : row) {
                final int rgb = color & 0xFFFFFF;
                if (known[rgb] == 0) {
                    known[rgb] = (byte) (ask(color, probe) + 2);
                }
                final int bin = known[rgb] - 2;
                if (bin != NONE) {
                    ++bins[bin];
                    ++coloured;
                }
            }
        }
        if (count(0) < count(1)) {
            leader = 1;
            runnerUp = 0;
        }
        for (int k = 2; k < SPANS; ++k) {
            if (count(k) > count(leader)) { // who is overtaken is not the runner-up
                leader = k;
            } else if (count(k) > count(runnerUp)) {
                runnerUp = k;
            }
        }
    }

    /** Returns the explanation, lines that begin with a blank. A cast may read {@code white}. */
    String lines(boolean white, boolean histogram) {
        final StringBuilder lines = new StringBuilder();
        lines.append(
                String.format(Locale.ROOT, "  coloured: %.2f %% of the pixels%n", 100 * share()));
        if (coloured > 0) {
            lines.append(span("leading span", leader)).append(span("runner-up", runnerUp));
        }
        final String refusal = refusal();
        final String cast = white ? "a cast, but in white, which reads as none" : "a cast";
        lines.append("  ").append(refusal == null ? cast : "none: " + refusal).append('\n');
        final int most = Arrays.stream(bins).max().getAsInt();
        for (int bin = 0; histogram && most > 0 && bin < SPANS; ++bin) {
            final int length = (int) Math.ceil((double) BAR * bins[bin] / most);
            lines.append(String.format("  %3d|%s%n", DEGREES * bin, "#".repeat(length)));
        }
        return lines.toString();
    }

    void writeTo(JsonGenerator generator) throws IOException {
        generator.writeNumberField("pixels", pixels);
        generator.writeNumberField("coloured", coloured);
        generator.writeNumberField("leadingHue", DEGREES * leader);
        generator.writeNumberField("leading", count(leader));
        generator.writeNumberField("runnerUpHue", DEGREES * runnerUp);
        generator.writeNumberField("runnerUp", count(runnerUp));
        generator.writeStringField("refusal", refusal());
        generator.writeFieldName("hues");
        generator.writeArray(bins, 0, SPANS);
    }

    /** Returns the first rule that refuses a cast, or null. */
    String refusal() {
        final int distance = Math.abs(leader - runnerUp);
        if (share() < LEAST_COLOURED) {
            return "less than 5 % of the pixels are coloured";
        }
        if (share(leader) < LEAST_LEADER) {
            return "the leading span holds less than 40 % of the coloured pixels";
        }
        if (share(leader) - share(runnerUp) < LEAST_LEAD && distance > 1 && distance < SPANS - 1) {
            return "the runner-up, which is not next to the leader, is less than 20 points behind";
        }
        return null;
    }

    private String span(String role, int k) {
        return String.format(
                Locale.ROOT,
                "  %s: %.2f %% of the coloured, hues from %d to %d%n",
                role,
                100 * share(k),
                DEGREES * k,
                (DEGREES * k + 2 * DEGREES - 1) % 360);
    }

    private float share() {
        return (float) coloured / pixels;
    }

    private float share(int k) {
        return (float) count(k) / coloured;
    }

    private int count(int k) {
        return bins[k] + bins[(k + 1) % SPANS];
    }

    /** Returns which 15 degrees a colour's hue lies in, or NONE where it is not coloured. */
    private static int ask(int color, Bitmap probe) {
        final int end = askForSpan(color, color, probe);
        // A colour fills two spans, and of two full ones the first counts. Its middle is where the
        // colour's bin begins, save that bin 0 fills the last span and the first, as bin 1 does.
        return end == 1 && askForSpan(color, ORANGE, probe) == 1 ? 0 : end;
    }

    /** Returns the middle of the leading span of a picture, in units of 15 degrees, or NONE. */
    private static int askForSpan(int color, int corner, Bitmap probe) {
        probe.setPixels(new int[] {color, color, color, corner}, 0, 2, 0, 0, 2, 2);
        final int cast = BitmapGrayUtil.getBitmapColorCast(probe, 100, 100);
        if (cast == NONE) {
            return NONE;
        }
        final float[] hsb = Color.RGBtoHSB(cast >> 16 & 0xFF, cast >> 8 & 0xFF, cast & 0xFF, null);
        return Math.round(hsb[0] * SPANS) % SPANS;
    }
}

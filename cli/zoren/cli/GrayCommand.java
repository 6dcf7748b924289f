package zoren.cli;

import android.graphics.Bitmap;
import com.fasterxml.jackson.core.JsonGenerator;
import java.io.IOException;
import picocli.CommandLine.Command;
import zoren.util.BitmapGrayUtil;

@Command(
        name = "gray",
        header = "Print the mean gray level of pictures.",
        description = {
            "",
            "Prints a line a picture: the level from 0 (black) to 255 (white), a tab, the path."
                    + " Alpha takes no part.",
            ""
        },
        footer = {"", "Example:", "  zoren gray --json *.png"})
final class GrayCommand extends MeasureCommand {
    @Override
    String name() {
        return "gray";
    }

    @Override
    Measure measure(Bitmap bitmap) {
        final int level = BitmapGrayUtil.getBitmapGray(bitmap);
        return new Measure() {
            @Override
            public String text() {
                return Integer.toString(level);
            }

            @Override
            public void writeTo(JsonGenerator generator) throws IOException {
                generator.writeNumberField(name(), level);
            }
        };
    }
}

-- For pandoc: a link to one of the documents leads to its page.
function Link(link)
    if not link.target:match("^%a+:") then
        link.target = link.target:gsub("%.md(#?)", ".html%1"):gsub("^README%.html", "index.html")
    end
    return link
end
